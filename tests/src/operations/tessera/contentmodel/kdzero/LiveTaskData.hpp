#pragma once

#include <cstdint>

#include "fl/i18n/ustring.hpp"

namespace tessera::contentmodel::kdzero {

class LiveTaskData {
 public:
  using ustring = fl::i18n::ustring;
  const ustring& getTaskId() const;
  LiveTaskData& setTaskId(const ustring& text);
  LiveTaskData& setText(const ustring& text);
  LiveTaskData& setAppIdentifier(const ustring& text);
  LiveTaskData& setAppState(const ustring& text);
  LiveTaskData& setAppVariables(const ustring& text);
  LiveTaskData& setAppVariablesUserMap(const ustring& text);
  LiveTaskData& setView(const ustring& text);
  LiveTaskData& setExecutionModel(const ustring& text);
  LiveTaskData& setAutoRun(const ustring& text);
  LiveTaskData& setCollapsed(const ustring& text);
  LiveTaskData& setNumCodeLines(std::uint16_t count);
};

}  // namespace tessera::contentmodel::kdzero
