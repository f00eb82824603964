#include "Soak.h"

#include "foundation/HeapArenas.h"
#include "foundation/MainThread.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>

#include <clocale>

int main(int argc, char** argv)
{
    CLI::App app("Takes many jobs through the engine of one long run, with faults, and looks whether threads,\n"
                 "descriptors or memory pile up. Exits with 0 when nothing does and every job was delivered.",
                 "quillpost-soak");
    SoakOptions options;
    bool ignoresMemory = false;
    app.add_option("--jobs", options.jobs, "How many jobs")->check(CLI::Range(2, 100000))->capture_default_str();
    app.add_option("--minutes", options.minutes, "The time over which they are submitted")
        ->check(CLI::Range(0.01, 10000.0))
        ->capture_default_str();
    app.add_option("--seed", options.seed, "What goes wrong, and when")->capture_default_str();
    app.add_option("--warm-up", options.warmUp, "Jobs before the first measure")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    app.add_flag("--no-memory", ignoresMemory, "Compare threads and descriptors alone");
    CLI11_PARSE(app, argc, argv);
    options.comparesMemory = !ignoresMemory;

    HeapArenas::keepFew(); // As the programs do.
    QCoreApplication qtApplication(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const MainThread::Attachment mainThread;
    Soak soak(options);
    return soak.run();
}
