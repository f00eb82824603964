// Starts a program and waits for its first window: the time from its start until the X server has mapped a window of
// it that is no pop-up and larger than 50 x 50, and its memory then. Usage: quillpost-bench-start PROGRAM [ARGUMENT …]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int smallestSide = 50;
constexpr auto longestWait = std::chrono::seconds(60);

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Type>
using Freed = std::unique_ptr<Type, Free>;

[[noreturn]] void fail(const std::string& message)
{
    std::fprintf(stderr, "quillpost-bench-start: %s\n", message.c_str());
    std::exit(EXIT_FAILURE);
}

class Screen
{
public:
    Screen() : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(m_connection) != 0)
            fail("there is no X server at DISPLAY");
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, root, XCB_CW_EVENT_MASK, &events);
        // An answer, so that the server has done so before the program starts.
        const Freed<xcb_get_input_focus_reply_t> done(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }
    ~Screen() { xcb_disconnect(m_connection); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // 0 when no window comes in time.
    [[nodiscard]] xcb_window_t waitForWindow(Clock::time_point deadline) const
    {
        for (;;) {
            while (const Freed<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
                if ((event->response_type & 0x7f) != XCB_MAP_NOTIFY)
                    continue;
                const auto& mapped = *reinterpret_cast<const xcb_map_notify_event_t*>(event.get());
                if (isWindow(mapped))
                    return mapped.window;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
            if (left <= 0 || ::poll(&descriptor, 1, static_cast<int>(left)) < 0)
                return 0;
        }
    }

    // Without what a JSON text would have to escape.
    [[nodiscard]] std::string titleOf(xcb_window_t window) const
    {
        const Freed<xcb_get_property_reply_t> title(xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
            nullptr));
        std::string text;
        if (title)
            text.assign(static_cast<const char*>(xcb_get_property_value(title.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(title.get())));
        std::erase_if(text, [](char c) { return c < ' ' || c == '"' || c == '\\'; });
        return text;
    }

private:
    [[nodiscard]] bool isWindow(const xcb_map_notify_event_t& mapped) const
    {
        if (mapped.override_redirect != 0)
            return false;
        const Freed<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, mapped.window), nullptr));
        return geometry && geometry->width > smallestSide && geometry->height > smallestSide;
    }

    xcb_connection_t* const m_connection;
};

// In megabytes; below 0 when the system does not tell.
double figureOf(const std::string& path, std::string_view name)
{
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(name))
            return std::stod(line.substr(name.size())) / 1024;
    }
    return -1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        fail("usage: quillpost-bench-start PROGRAM [ARGUMENT …]");
    const Screen screen;
    const auto begin = Clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::setsid(); // Its children end with it.
        const int nowhere = ::open("/dev/null", O_RDWR);
        ::dup2(nowhere, STDIN_FILENO);
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
        ::execvp(argv[1], argv + 1);
        ::_exit(127);
    }
    const xcb_window_t window = child > 0 ? screen.waitForWindow(begin + longestWait) : 0;
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    int status = 0;
    if (window == 0 || ::kill(child, SIGSTOP) != 0 || ::waitpid(child, &status, WUNTRACED) != child ||
        !WIFSTOPPED(status)) {
        ::kill(-child, SIGKILL);
        fail(std::string(argv[1]) + " showed no window");
    }
    const std::string title = screen.titleOf(window);
    const std::string folder = "/proc/" + std::to_string(child);
    const double resident = figureOf(folder + "/status", "VmRSS:");
    const double proportional = figureOf(folder + "/smaps_rollup", "Pss:");
    ::kill(-child, SIGKILL);
    ::waitpid(child, &status, 0);
    std::printf(
        "{\"seconds\": %.6f, \"residentMegabytes\": %.3f, \"proportionalMegabytes\": %.3f, \"title\": \"%s\"}\n",
        seconds, resident, proportional, title.c_str());
    return EXIT_SUCCESS;
}
