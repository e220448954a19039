#pragma once

namespace quorvel {

/// Makes sure that text can be laid out. Qt's fonts need its application object, which a program
/// with windows has. A program without windows calls this at the start of `main`, in its only
/// thread: it creates an application object that needs no display and lives until the process ends,
/// and sets the C locale from the environment as every Qt application does. Drawing calls it too,
/// for programs that didn't; that is safe from any thread as long as the program creates no
/// application object of its own later.
/// Returns false if there can be no fonts: the program's application object has no graphics.
bool ensureFontEngine();

} // namespace quorvel
