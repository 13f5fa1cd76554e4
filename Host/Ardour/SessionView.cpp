#include "Ardour/SessionView.h"

#include <algorithm>
#include <cstdint>
#include <pugixml.hpp>

#include "Ardour/SessionXml.h"
#include "Session/XmlDocument.h"

namespace velmora::ardour {

int ShowRegions(const std::string& folder, const ArdourPlan& plan) {
  // In a window of a usual size. What does not fit in a smaller one is at its right.
  constexpr std::int64_t kPixels = 1000, kMarginPixels = 20;
  const std::int64_t samplesPerPixel =
      std::max<std::int64_t>(1, (plan.End() - plan.First()) / (kPixels - 2 * kMarginPixels) + 1);
  const std::string path = folder + "/instant.xml";
  host::XmlDocument xml;
  xml.load_file(path.c_str());  // Ardour keeps there what it remembers of a session
  pugi::xml_node root = xml.child("instant");
  if (!root) root = xml.append_child("instant");
  pugi::xml_node editor = root.append_child("Editor");
  editor.append_attribute("zoom") = samplesPerPixel;
  editor.append_attribute("left-frame") =
      std::max<std::int64_t>(0, plan.First() - kMarginPixels * samplesPerPixel);
  editor.append_attribute("playhead") = plan.First();
  return SaveXml(path, xml);
}

}  // namespace velmora::ardour
