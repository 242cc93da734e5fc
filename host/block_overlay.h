// Draws the blocks of a page with their numbers.
#pragma once

#include <span>

#include "host/page.h"
#include "host/pix_owner.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::host {

PixPtr DrawBlocks(const Page& page, std::span<const BlockRec> blocks);

}  // namespace vorlanepic::host
