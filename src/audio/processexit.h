#pragma once

// Ends the process once the application has torn itself down: every window closed, every file
// written and the QGuiApplication destroyed. Output streams are flushed; the destructors of
// static objects do not run. Qt 6.4's PulseAudio engine, a static, disconnects from the sound
// server at that point without holding its main loop's lock while the loop's thread still runs,
// and libpulse aborts on the race in about one exit in thirty: a crash report after every
// thirtieth show, and a status a session manager reads as a crash.
[[noreturn]] void exitProcess(int status);
