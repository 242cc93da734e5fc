// A place on a page.
#pragma once

namespace vorlane::services {

// A place on the page in pixels; whole numbers are pixel centres.
struct Place {
  double x;
  double y;
};

}  // namespace vorlane::services
