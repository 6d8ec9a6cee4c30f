#pragma once

#include <QtGlobal>

namespace tuppi {
class WebViews;
}

/// The one function of the module that holds the web engine. The caller owns what it gives.
extern "C" Q_DECL_EXPORT tuppi::WebViews *tuppiWebViews();
