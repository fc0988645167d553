#pragma once

namespace orvo {

/// Makes reads of USB3 Vision devices that fail give a number: 1. Aravis computes a stream from what it has read
/// without asking whether that worked, and divides by it, so that a cable pulled at the wrong moment would end the
/// program. For the whole process, before any device is there.
void defineFailedUsbReads();

} // namespace orvo
