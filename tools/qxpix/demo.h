// The demo: built-in test pictures, every family of exports run on them, each result written as a
// PNG, and a labelled contact sheet (index.png) with a page that shows them (index.html).
#pragma once

#include <functional>
#include <string>

namespace qxpix {

// Writes into `dir` (created if missing); `progress` is called with each file written.
void run_demo(const std::string& dir, int threads,
              const std::function<void(const std::string&)>& progress);

}  // namespace qxpix
