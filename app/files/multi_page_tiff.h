// Joins TIFF pages into one file without holding more than one in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vorlane::files {

// What joining keeps from page to page.
struct TiffChain {
  uint32_t size = 0;  // bytes of the file so far
  uint32_t link = 0;  // where the file offset of the next page's directory stands
};

// Prepares the bytes of a one-page TIFF file, in this machine's byte order, to stand at the end of
// the chain: offsets inside move by the chain's size. The first page stands as it is.
//
//   directory  receives the file offset of the page's directory, to be written at the link that the
//              chain held before the call (nothing to write for the first page)
//
// False when the bytes are no such file or the chain would pass 4 GB; the chain is then unchanged.
bool AppendTiffPage(TiffChain* chain, std::vector<uint8_t>* page, uint32_t* directory);

}  // namespace vorlane::files
