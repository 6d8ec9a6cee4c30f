#pragma once

#include "viewer/WebView.h"

#include <memory>

namespace tuppi {

/// Why there are no web views.
enum class WebViewsLack
{
    Missing,   ///< the web engine is not installed, or not whole
    Sandbox,   ///< its pages could not be shut off from the rest of the computer
};

/// How pages are run.
enum class Sandboxing { Required, GivenUp };

struct LoadedWebViews
{
    std::unique_ptr<WebViews> views;
    WebViewsLack lack = WebViewsLack::Missing;  ///< where there are no views
};

/// Loads the web engine; takes a moment, so only when a page is to be shown. The engine ends the whole program
/// where it misses a part of itself or its sandbox, so that these are looked for first.
LoadedWebViews LoadWebViews(Sandboxing sandboxing);

} // namespace tuppi
