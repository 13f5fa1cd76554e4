-- Reads a session's audio through Ardour.
--
--     ardour<N>-lua read_session.lua FOLDER NAME FIRST END OUT BLOCK [STRIDE]
--
-- Writes OUT/<track name>.<channel> for each channel of each track: 32-bit float samples from FIRST
-- to END. BLOCK samples are read at once, every STRIDE samples; without a stride, all are. Fades
-- want blocks of 1, as Ardour stretches a ramp over the block that is read.

local folder, name, first, last, out, block =
  arg[1], arg[2], math.tointeger(arg[3]), math.tointeger(arg[4]), arg[5], math.tointeger(arg[6])
local stride = math.tointeger(arg[7]) or block

AudioEngine:set_backend("None (Dummy)", "", "")
local session = load_session(folder, name)
if not session then os.exit(1) end

local memory = ARDOUR.DSP.DspShm(3 * block)
local audio, mix, gain = memory:to_float(0), memory:to_float(block), memory:to_float(2 * block)

local routes = session:get_tracks()
for _, route in ipairs(routes:table()) do
  local track = route:to_track()
  local list = track:playlist():to_audioplaylist()
  for channel = 0, track:n_inputs():n_audio() - 1 do
    local file = io.open(out .. "/" .. track:name() .. "." .. channel, "wb")
    for position = first, last - 1, stride do
      local count = math.min(block, last - position)
      list:read(audio, mix, gain, Temporal.timepos_t(position), Temporal.timecnt_t(count), channel)
      file:write(string.pack("<" .. ("f"):rep(count), table.unpack(audio:get_table(count))))
    end
    file:close()
  end
end
session:close()
os.exit(0)
