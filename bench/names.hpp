#pragma once

#include <string>

namespace bench {

// The names of the subjects in the tables.
inline const std::string kFloor = "floor";
inline const std::string kPugixml = "pugixml";
inline const std::string kMd4c = "md4c";
inline const std::string kLibxml2 = "libxml2";
inline const std::string kCmark = "cmark";
inline const std::string kParseLine = "parseLine";
inline const std::string kLists = "the provider's two lists";
inline const std::string kService = "default parser as a service";
inline const std::string kTasks = "task and default parser";
inline const std::string kTrace = "one trace call, logging off";

// The kinds of marked lines, appended to one of the names above.
inline const std::string kPlain = ", no marker, every 4th line";
inline const std::string kOneIn100 = ", a marker in 1 of 100 lines";
inline const std::string kOneIn10 = ", a marker in 1 of 10 lines";
inline const std::string kOneALine = ", a marker per line";
inline const std::string k100ALine = ", 100 markers per line";

}  // namespace bench
