// The inspector's GLib log writer. The library's records (its two log domains) go to standard
// error at every level, whatever G_MESSAGES_DEBUG says, as one line each:
// "<level> [<domain>/<category>] <message>", e.g. "warning [VembaCheckoutKit/PointsOfInterest]
// ...", with a line break inside the message written as the two characters "\n" (a carriage return
// as
// "\r"), so that tests and people read one stable line per message. Records of other domains
// (GTK, WebKit) go to GLib's default writer.
#pragma once

namespace vemba::inspect {

// Installs the writer: once, from main() on the main thread, before any command runs (GLib takes
// one writer per process).
void installLogWriter();

}  // namespace vemba::inspect
