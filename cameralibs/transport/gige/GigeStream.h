#pragma once

#include <arv.h>

namespace cameralibs::transport {

/// What makes images of GigE Vision cameras arrive, before a stream is made and after. None of it is needed for a
/// stream to work, so what a camera refuses is let go.
void prepareGigeDevice(ArvGvDevice* device);
void prepareGigeStream(ArvGvDevice* device, ArvGvStream* stream);

} // namespace cameralibs::transport
