// Draws the blocks of a page with their numbers.
#pragma once

#include <span>

#include "app/files/page.h"
#include "app/files/pix_owner.h"
#include "app/services/block_listing.h"

namespace vorlane::overlay {

files::PixPtr DrawBlocks(const files::Page& page, std::span<const services::Block> blocks);

}  // namespace vorlane::overlay
