#pragma once

#include "platform/SoundOutput.h"

#include <QtGlobal>

/// The one function of the module that holds Qt Multimedia and the sounds. The caller owns what it gets.
extern "C" Q_DECL_EXPORT tuppi::SoundOutput *tuppiSoundOutput();
