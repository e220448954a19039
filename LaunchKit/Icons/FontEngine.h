#pragma once

namespace quorvel {

/// Makes sure that text can be laid out. Qt's fonts come with its application object, which a
/// program with windows has. A program without windows calls this at the start of `main`, in its
/// only thread: it makes an application object that needs no display and lives to the end of the
/// process, and sets the C locale from the environment as every Qt application does. Drawing calls
/// it too, so that a program which forgot still draws; that is safe from any thread as long as the
/// program makes no application object of its own later.
/// False when there can be no fonts: the program has an application object for no graphics at all.
bool ensureFontEngine();

} // namespace quorvel
