#pragma once

#include <QString>

// The system's file manager and default applications, for the records page and the export.
class FileBrowser
{
public:
    // Opens the file's folder with the file selected where the file manager can be asked to
    // (the freedesktop file-manager interface, Explorer's "/select"); otherwise opens the folder.
    // Returns at once: the file manager may take a while to start.
    static void showInFolder(const QString &filePath);
    static bool openFolder(const QString &folder);
    // Opens the file with the application the system has for its type.
    static bool openFile(const QString &filePath);
};
