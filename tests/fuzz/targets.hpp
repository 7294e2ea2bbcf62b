#pragma once

#include <span>
#include <string_view>

namespace quenlith::fuzz {

// The fuzz targets. Each passes `input`, any bytes, to one part of the system and ends the process
// if an invariant is broken.

// platform/
void checkText(std::string_view input);
void checkJson(std::string_view input);
void checkScanner(std::string_view input);
void checkMarker(std::string_view input);
void checkCollections(std::string_view input);
void checkHandles(std::string_view input);

// framework/
void checkFilter(std::string_view input);
void checkManifest(std::string_view input);
void checkLibrary(std::string_view input);

// parsers/
void checkLine(std::string_view input);
void checkTask(std::string_view input);

// tessera/
void checkSource(std::string_view input);
void checkAppendix(std::string_view input);
void checkInputs(std::string_view input);
void checkFixes(std::string_view input);
void checkReports(std::string_view input);
void checkPage(std::string_view input);
void checkReplay(std::string_view input);

/// A target and the name of the folder with its corpus.
struct Target {
  std::string_view name;
  void (*check)(std::string_view input);
};

/// The targets of a program that replays corpora.
std::span<const Target> targets();

}  // namespace quenlith::fuzz
