#pragma once

#include <QByteArrayView>
#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <vector>

class UserDefaults;

// A fuzz target reads one input, whatever it holds, and requires what must be true of the result. Built with clang, a
// fuzzer makes the inputs up; built as the others, a test runs the inputs that are kept.
namespace FuzzTarget {

using Run = void (*)(QByteArrayView input);

struct Entry
{
    const char* name;
    Run run;
};
// Every target of the program, sorted by name.
[[nodiscard]] std::vector<Entry> all();

struct Registration
{
    Registration(const char* name, Run run);
};

// A home, settings and a folder for files, of the program's own. One at a time, on the main thread.
class Surroundings
{
public:
    Surroundings();
    ~Surroundings();
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

private:
    QTemporaryDir m_folder;
    std::unique_ptr<UserDefaults> m_defaults;
};

// Stops the fuzzer, which keeps the input; fails the test.
void require(bool holds, const char* text);

// The folder for files, emptied.
[[nodiscard]] QString emptyFolder();
// Returns the file's path.
QString writeFile(const QString& path, QByteArrayView contents);
// The pieces between the bytes 0x1e, which stand between the texts of an input of several.
[[nodiscard]] QList<QByteArray> pieces(QByteArrayView input);

} // namespace FuzzTarget

#define FUZZ_TARGET(name)                                                                                              \
    static void run##name(QByteArrayView input);                                                                       \
    static const FuzzTarget::Registration registration##name(#name, &run##name);                                       \
    static void run##name(QByteArrayView input)
