#pragma once

// Ends the process once the application has torn itself down: every window closed, every file
// written and the QGuiApplication destroyed. Output streams are flushed; the destructors of
// static objects do not run. Qt 6.4's PulseAudio engine, a static, disconnects from the sound
// server at that point without holding its main loop's lock while the loop's thread still runs,
// and libpulse aborts on the race in about one exit in thirty: a crash report after every
// thirtieth show, and a status a session manager reads as a crash.
[[noreturn]] void exitProcess(int status);

// From this call on, an exit() that a library makes in the middle of the run ends the process
// at once with status 1, as exitProcess(1) does, rather than destroying Qt's static objects under
// the threads that still use them. Qt's X11 plugin does so when the X server goes away: the
// sound thread, which reads the preferences every half second, then crashed on the settings'
// destroyed statics. Handlers registered later run first: call it once everything has started,
// just before the event loop, so that it runs before the destructors of the statics made so far.
void exitAtOnceOnLibraryExit();
