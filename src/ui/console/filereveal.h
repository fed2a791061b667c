#pragma once

#include <QString>

// Shows a file to the operator in the desktop's file manager.
namespace FileReveal {

// Selects the file where the desktop's file manager offers that (the freedesktop
// FileManager1 interface on the session bus), otherwise opens the folder that holds it.
void show(const QString &path);

} // namespace FileReveal
