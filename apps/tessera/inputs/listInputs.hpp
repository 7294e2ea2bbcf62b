#pragma once

#include <vector>

#include "tessera/inputs/Input.hpp"
#include "tessera/inputs/InputOptions.hpp"

namespace tessera::inputs {

/// Whether binary files are left out of the list, or only when they are read. The former opens each
/// file once more.
enum class BinaryFiles { kListed, kLeftOut };

/// Returns the inputs that `options` name, in the order of the paths. A directory is replaced by
/// the regular files in it and below, in byte order of their paths, without hidden and excluded
/// ones and without symbolic links; one that cannot be read is an input itself, and reading it
/// tells why. The files of `listFile` come after `paths`. The list is not divided into shards.
///
/// Throws ProblemError when the list or a glob cannot be used, or standard input is named twice.
std::vector<Input> listInputs(const InputOptions& options, BinaryFiles binaryFiles);

/// Returns whether an input is a binary file that was found in a directory, which is left out. One
/// that cannot be read is not. Opens the file.
bool isLeftOut(const Input& input);

/// Leaves only the inputs of `shard` in the list.
void keepShard(std::vector<Input>& inputs, const Shard& shard);

}  // namespace tessera::inputs
