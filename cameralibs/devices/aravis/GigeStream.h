#pragma once

#include <arv.h>

#include <string>

namespace orvo {

/// What makes images of GigE Vision cameras arrive, before a stream is made and after. None of it is needed for a
/// stream to work, so what a camera refuses is let go.
void prepareGigeDevice(ArvGvDevice* device, const std::string& name);
void prepareGigeStream(ArvGvDevice* device, ArvGvStream* stream);

} // namespace orvo
