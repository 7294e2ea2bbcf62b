#pragma once

#include <cstdint>
#include <utility>

#include "fl/i18n/ustring.hpp"

namespace tessera::contentmodel::kdzero {

/// The settings of an embedded task. A plain value; text is UTF-16.
///
/// Every setter returns the record, so that calls chain.
class LiveTaskData {
 public:
  using ustring = fl::i18n::ustring;

  const ustring& getTaskId() const noexcept { return taskId; }
  const ustring& getText() const noexcept { return text; }
  const ustring& getAppIdentifier() const noexcept { return appIdentifier; }
  const ustring& getAppState() const noexcept { return appState; }
  const ustring& getAppVariables() const noexcept { return appVariables; }
  const ustring& getAppVariablesUserMap() const noexcept { return appVariablesUserMap; }
  const ustring& getView() const noexcept { return view; }
  const ustring& getExecutionModel() const noexcept { return executionModel; }
  const ustring& getAutoRun() const noexcept { return autoRun; }
  const ustring& getCollapsed() const noexcept { return collapsed; }
  /// Number of lines of code from the line of the opening marker to that of the closing one, both
  /// included.
  std::uint16_t getNumCodeLines() const noexcept { return numCodeLines; }

  LiveTaskData& setTaskId(ustring value) noexcept {
    taskId = std::move(value);
    return *this;
  }
  LiveTaskData& setText(ustring value) noexcept {
    text = std::move(value);
    return *this;
  }
  LiveTaskData& setAppIdentifier(ustring value) noexcept {
    appIdentifier = std::move(value);
    return *this;
  }
  LiveTaskData& setAppState(ustring value) noexcept {
    appState = std::move(value);
    return *this;
  }
  LiveTaskData& setAppVariables(ustring value) noexcept {
    appVariables = std::move(value);
    return *this;
  }
  LiveTaskData& setAppVariablesUserMap(ustring value) noexcept {
    appVariablesUserMap = std::move(value);
    return *this;
  }
  LiveTaskData& setView(ustring value) noexcept {
    view = std::move(value);
    return *this;
  }
  LiveTaskData& setExecutionModel(ustring value) noexcept {
    executionModel = std::move(value);
    return *this;
  }
  // A text, not a flag, and so is the next one.
  LiveTaskData& setAutoRun(ustring value) noexcept {
    autoRun = std::move(value);
    return *this;
  }
  LiveTaskData& setCollapsed(ustring value) noexcept {
    collapsed = std::move(value);
    return *this;
  }
  LiveTaskData& setNumCodeLines(std::uint16_t lines) noexcept {
    numCodeLines = lines;
    return *this;
  }

  friend bool operator==(const LiveTaskData&, const LiveTaskData&) = default;

 private:
  ustring taskId;
  ustring text;
  ustring appIdentifier;
  ustring appState;
  ustring appVariables;
  ustring appVariablesUserMap;
  ustring view;
  ustring executionModel;
  ustring autoRun;
  ustring collapsed;
  std::uint16_t numCodeLines = 0;
};

}  // namespace tessera::contentmodel::kdzero
