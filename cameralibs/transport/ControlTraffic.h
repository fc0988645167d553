#pragma once

#include "cameralibs/transport/Protocol.h"

#include <functional>
#include <string>
#include <string_view>

namespace cameralibs::transport {

/// What Aravis does within calls that return only when all is done, seen where it calls others: the functions of GLib
/// and libusb that it sends, receives and opens files with are replaced by ones in this program, which call them in
/// turn. Checked against Aravis 0.8.26.
///
/// Where a version of Aravis takes other functions nothing is told: cameras that need long get less time, and files
/// stay out of reach by Landlock alone.

/// `handler` runs for each answer of a camera to what it was asked, on the thread that receives it. Set before any
/// camera is opened.
void onAnswer(std::function<void(Answer)> handler);

/// Calls the handler.
void tellAnswer(Answer answer);

/// `handler` runs for each answer to a search for GigE Vision cameras, with what is in it after its header.
void onSearchAnswer(std::function<void(std::string_view)> handler);

/// Whether the GigE Vision camera that is being opened has answered every command so far, in whatever way.
[[nodiscard]] bool answersEverything();

/// The last file that Aravis was kept from opening; empty without one.
[[nodiscard]] std::string refusedFile();

} // namespace cameralibs::transport
