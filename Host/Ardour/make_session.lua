-- Makes an Ardour session, and reads it back when its file has been edited.
--
--     ardour<N>-lua make_session.lua JOB
--
-- Everything that differs from run to run stands in the file JOB: texts with their length in front,
-- so that a name can hold any bytes. The one who started the script reads its lines on standard
-- output that begin with "velmora: ", and answers on standard input. The script ends with status 0
-- only after its last line, "velmora: done".

io.stdout:setvbuf("line")

local function say(...)
  io.stdout:write("velmora: ", table.concat({...}, " "), "\n")
end

local function fail(text)
  say("failed", (text:gsub("%c", " ")))
  io.stdout:flush()
  os.exit(1)
end

-- A step is a sign of life: without any for long the script counts as hanging.
local steps = 0
local function step()
  steps = steps + 1
  say("step", tostring(steps))
  io.stdout:flush()
end

local job = io.open(arg[1], "rb")
if not job then fail("the job cannot be read") end

local function number()
  local value = job:read("n")
  if not value then fail("the job is damaged") end
  return value
end

local function text()
  local length = number()
  job:read(1) -- the blank between length and text
  return length == 0 and "" or job:read(length)
end

local function save(session)
  if session:save_state("", false, false, false, false, false) ~= 0 then
    fail("Ardour cannot save the session; is the disk full?")
  end
end

-- Waits for the one who started this. If that process has ended, nothing comes any more.
local function await(word)
  io.stdout:flush()
  if io.read("l") ~= word then os.exit(1) end
end

step()
if not AudioEngine:set_backend("None (Dummy)", "", "") then fail("there is no dummy backend") end
step()

local folder, name, rate = text(), text(), number()
local session = create_session(folder, name, rate)
if not session then fail("Ardour cannot make a session of " .. rate .. " Hz") end
step()

local outputs = {}
for _ = 1, number() do
  local channels, title = number(), text()
  local tracks = session:new_audio_track(channels, 2, nil, 1, title,
    ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true)
  if not tracks or tracks:empty() then fail("Ardour makes no track") end
  local track = tracks:front()
  -- The panner would take 3 dB from a single channel, and spread more than two.
  if channels ~= 2 then track:panner_shell():set_bypassed(true) end
  outputs[#outputs + 1] = track:output()
  say("track", track:to_stateful():id():to_s())
  step()
end

-- Ardour connects new tracks to its master when it finds the time, maybe after they are saved.
local master = session:master_out():input()
local into_master = master:n_ports():n_audio()
local patience = 200
for _, output in ipairs(outputs) do
  for i = 0, output:n_ports():n_audio() - 1 do
    local port = output:nth(i)
    while patience > 0 and not port:connected() do
      patience = patience - 1
      ARDOUR.LuaAPI.usleep(10000)
    end
    if not port:connected() then port:connect(master:nth(i % into_master):name()) end
  end
end
outputs, master = nil, nil
step()

-- How Ardour writes times down changes between its versions, so it is asked.
for i = 1, number() do
  local samples = number()
  say("time", Temporal.timepos_t(samples):str())
  if i % 1000 == 0 then step() end
end

save(session)
session:close()
session = nil
collectgarbage()
step()
say("saved")
await("edited")

session = load_session(folder, name)
if not session then fail("Ardour cannot load the session") end
step()

-- What Ardour has made of it: each playlist's regions, whatever was asked for.
local regions = 0
local routes = session:get_tracks()
for _, route in ipairs(routes:table()) do
  local track = route:to_track()
  say("playlist", track:to_stateful():id():to_s(), track:name())
  local list = track:playlist():region_list()
  for _, region in ipairs(list:table()) do
    say("region", region:to_stateful():id():to_s(), tostring(region:position():samples()),
      tostring(region:start():samples()), tostring(region:length():samples()))
    regions = regions + 1
    if regions % 500 == 0 then step() end
  end
end
step()

save(session)
session:close()
step()
say("done", tostring(regions))
io.stdout:flush()
os.exit(0)
