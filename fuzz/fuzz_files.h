// What the targets of the command's file readers share.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "app/files/page.h"
#include "app/files/picture_file.h"

namespace vorlane::fuzz {

// Small, so that a run is short: pages and pictures beyond are refused before they are decoded.
files::ReadLimits SmallLimits();

// Runs a reader or writer; what it may throw for bytes from anywhere is passed over. Whatever else
// leaves it is a finding.
void Attempt(const std::function<void()>& work);

// Promises of every page that was read: a picture of a depth that the services take and the image
// library's check passes, or the reason why there is none. Then stores it as it was stored.
void TakePage(const files::Page& page);

}  // namespace vorlane::fuzz
