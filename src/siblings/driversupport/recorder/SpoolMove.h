// What another list of nodes has left in the spool, on its way to the nodes that there are now.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace zr {

class RecorderBooks;
class RecordLane;

// The folder of a node's spool within that of the recorder: `1-of-3`. node: zero-based.
std::string SpoolFolderName(std::size_t node, std::size_t nodes);

// Samples in folders of other numbers of nodes go to the ends of the lanes' spools, each to where its variable belongs
// now, and the folders go. What can't be moved stays for the next time, with a notice. lanes: one a node, not started,
// their spools taken. Blocks on the disk.
void MoveForeignSpools(const std::filesystem::path& folder, const std::vector<RecordLane*>& lanes,
                       RecorderBooks& books);

}  // namespace zr
