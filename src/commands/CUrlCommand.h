#pragma once

#include "commands/CUrlCommandResultObserver.h"
#include "commands/PointerHolder.h"
#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>

// One HTTP(S) transfer over one libcurl easy handle. A subclass chooses a URL and sets options in its constructor; the
// command processor then calls execute() on a worker thread and tells the observer on the main thread. Made once,
// executed once. Owned by shared pointers; the observer is not owned and must outlive the command.
//
// Certificates and host names are not verified, there is no time limit, and a reply body that arrives in several
// chunks leaves only its last one: the service's replies are short, and a client that kept more would read some of them
// differently.
class CUrlCommand
{
public:
    // A text goes to libcurl as bytes, a number as a long, a holder as its pointer. No value is a programming error.
    using OptionValue = std::variant<std::monostate, QByteArray, int, PointerHolder>;

    explicit CUrlCommand(QString url);
    virtual ~CUrlCommand();
    CUrlCommand(const CUrlCommand&) = delete;
    CUrlCommand& operator=(const CUrlCommand&) = delete;

    void setDefaults();
    // Kept until execute(); a later value for the same option replaces the earlier one.
    void setString(const QString& value, int option);
    void setNumber(int value, int option);
    void setPointer(PointerHolder value, int option);
    // Applies one value to the live handle; the outcome goes to result().
    void setObject(const OptionValue& value, int option);

    // Performs the transfer, blocking, on the calling thread. An option that libcurl refuses stops the rest of the
    // options, not the transfer.
    virtual void execute();

    // Makes a transfer under way fail soon, and one not yet begun at once. For the end of the program. Any thread.
    virtual void cancel();

    // The last libcurl result; 0 is success.
    [[nodiscard]] int result() const { return m_result; }
    [[nodiscard]] QString url() const;
    void setUrl(const QString& url);
    [[nodiscard]] QByteArray data() const;
    void setData(const QByteArray& data);
    // The reply as text: ASCII, with bytes outside it read as UTF-8 where they are that, else as Latin-1.
    [[nodiscard]] QString dataAsString() const;
    // Describes result(), also when it is 0.
    [[nodiscard]] Error error() const;

    [[nodiscard]] CUrlCommandResultObserver* observer() const { return m_observer; }
    void setObserver(CUrlCommandResultObserver* observer) { m_observer = observer; }
    [[nodiscard]] bool isVerbose() const { return m_isVerbose; }
    void setIsVerbose(bool verbose) { m_isVerbose = verbose; }

    // Sinks of libcurl's callbacks, on the worker thread.
    std::size_t selfBodyFunction(const char* bytes, std::size_t size, std::size_t number);
    // libcurl's calls: those that repeat the one before tell nothing and go no further.
    int progressCalled(double dlTotal, double dlNow, double ulTotal, double ulNow);
    int progressCallbackDLTotal(double dlTotal, double dlNow, double ulTotal, double ulNow);

protected:
    void setResult(int result) { m_result = result; }
    [[nodiscard]] bool isCancelled() const { return m_isCancelled; }
    void handleErrorIfAny() const;

private:
    struct Progress
    {
        double dlTotal;
        double dlNow;
        double ulTotal;
        double ulNow;

        bool operator==(const Progress&) const = default;
    };
    void notifyObserverProgressFromMainThread(const Progress& progress);
    void applyOptions();
    void watchSockets();
    static int openSocket(void* command, int purpose, void* address);
    static int closeSocket(void* command, int socket);

    struct HandleDeleter
    {
        void operator()(void* handle) const;
    };

    std::unique_ptr<void, HandleDeleter> m_curlObject;
    char m_errorBuffer[256] = {};
    std::optional<Progress> m_lastProgress; // of the transfer's thread
    std::atomic<int> m_result{0};
    std::map<int, OptionValue> m_options; // changed before the command is posted, read by execute()
    std::atomic<CUrlCommandResultObserver*> m_observer{nullptr};
    std::atomic<bool> m_isVerbose{false};
    std::atomic<bool> m_isCancelled{false};

    mutable std::mutex m_mutex; // guards the members below
    QString m_url;
    std::optional<QByteArray> m_data;
    std::deque<int> m_sockets; // open now; cancel() shuts them down
};
