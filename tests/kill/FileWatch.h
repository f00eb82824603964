#pragma once

#include <QString>

#include <functional>
#include <map>
#include <string>
#include <thread>

// Tells of every change of files below two folders, on a thread of its own, as it comes.
class FileWatch
{
public:
    // The changed file's path.
    using Changed = std::function<void(const std::string& path)>;

    FileWatch(const QString& firstFolder, const QString& secondFolder, Changed changed);
    ~FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

private:
    void watchFolder(const std::string& path);
    void threadProc();
    void readChanges();

    const Changed m_changed;
    const int m_descriptor;
    const int m_end;
    std::map<int, std::string> m_folders; // of the thread, once it runs
    std::thread m_thread;
};
