#pragma once

#include <vector>

#include "tessera/files/FileReader.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/inputs/InputOptions.hpp"

namespace tessera::inputs {

/// When binary files and standard streams are left out of a directory, which are recognised once a
/// file is open: when it is read, and until then it is in the list; or before the list is returned,
/// for which each file is opened once more.
enum class LeaveOut { kWhenRead, kWhenListed };

/// Returns the inputs that `options` name, in the order of the paths. A directory is replaced by
/// the regular files in it and below, in byte order of their paths, without hidden and excluded
/// ones and without symbolic links; one that cannot be read is an input itself, and reading it
/// tells why. The files of `listFile` come after `paths`. Repeated ones are dropped if `options`
/// says so. The list is not divided into shards.
///
/// Throws ProblemError when the list or a glob cannot be used, or standard input is named twice.
std::vector<Input> listInputs(const InputOptions& options, LeaveOut leaveOut);

/// Returns whether a file that was found in a directory is left out: it is binary, or one of
/// `streams`. Call it before the file is read. Throws ProblemError when it cannot be read.
bool isLeftOut(files::FileReader& file, const files::StreamFiles& streams);

/// Returns whether an input was found in a directory and is left out. Opens it; what cannot be read
/// is not left out.
bool isLeftOut(const Input& input, const files::StreamFiles& streams);

/// Leaves only the inputs of `shard` in the list.
void keepShard(std::vector<Input>& inputs, const Shard& shard);

}  // namespace tessera::inputs
