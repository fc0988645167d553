#pragma once

#include "cameralibs/transport/Channel.h"

#include <functional>
#include <string>
#include <string_view>

namespace cameralibs::transport {

// What the transport takes from Aravis beyond its documented interface; checked against Aravis 0.8.26.
//
// Many calls of Aravis return only after a whole conversation with a camera. To follow it, this program replaces the
// functions of GLib that Aravis sends, receives, polls and opens files with; the replacements call the originals. A
// version of Aravis that uses other functions bypasses them. The functions below report that, and their callers log it
// and do without: slow cameras get less time, searches may take longer, and only Landlock keeps files out of reach.

/// `handler` runs for each answer of a camera to a command, on the thread that receives it. To be set before a camera
/// is opened.
void onAnswer(std::function<void(Answer)> handler);

/// Passes an answer to the handler. For usb/UsbTraffic.h, which follows USB3 Vision cameras in the same way.
void reportAnswer(Answer answer);

/// When the GigE Vision camera last answered a command. In the future after a pending acknowledgement: until then the
/// camera needs no more than the time that it has asked for. Thread-safe.
[[nodiscard]] Clock::time_point lastAnswer();

/// Whether any answer to a command has been seen.
[[nodiscard]] bool seesAnswers();

/// Whether the GigE Vision camera has answered every command so far, be it with an error.
[[nodiscard]] bool answersEverything();

/// Begins a search for GigE Vision cameras. `handler` runs for each answer with its contents, without the header. From
/// `end` on Aravis receives nothing more: it listens until a second has passed without an answer, so a device that
/// never stops answering would keep it from listing any camera.
void beginSearch(Clock::time_point end, std::function<void(std::string_view)> handler);

/// Ends it. False if Aravis bypassed the limit.
[[nodiscard]] bool endSearch();

/// The last file that Aravis was kept from opening; empty if there was none.
[[nodiscard]] std::string refusedFile();

/// The descriptor of the stream's socket, which Aravis does not publish, by the port that it does publish. -1 if there
/// is none.
[[nodiscard]] int socketAt(std::uint16_t port);

} // namespace cameralibs::transport
