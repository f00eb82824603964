#pragma once

#include <QObject>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <functional>
#include <mutex>

// The user's settings: values that the user stored, over defaults that the program registered. Registered defaults are
// never written to disk; removing a stored value brings the default back.
//
// Reading and writing from every thread. Change signals come on the thread that made the change, inside it.
class UserDefaults : public QObject
{
    Q_OBJECT
public:
    // Kept in an INI file that is made when the first value is stored, in a folder that is made at once. Readable by
    // the user alone.
    explicit UserDefaults(const QString& filePath);
    ~UserDefaults() override;

    // The store that class operations without an object use. A program opens it once at start and keeps it to its end;
    // a test opens one of its own.
    [[nodiscard]] static UserDefaults& standard();
    static void setStandard(UserDefaults* defaults);

    // Adds to what is registered; a key registered again takes the new value.
    void registerDefaults(const QVariantMap& defaults);

    // The stored value, else the registered one, else an invalid value.
    [[nodiscard]] QVariant value(const QString& key) const;
    [[nodiscard]] bool isStored(const QString& key) const;
    // An invalid value removes the key.
    void setValue(const QString& key, const QVariant& value);
    void removeValue(const QString& key);
    // Writes to disk now rather than when the program next has time.
    void synchronize();
    // False when the last write did not reach the file.
    [[nodiscard]] bool isWritable() const;

    // Calls `apply` with the value now and again at every change, until `context` is destroyed.
    void bind(const QString& key, QObject* context, std::function<void(const QVariant&)> apply);

Q_SIGNALS:
    void valueChanged(const QString& key);

private:
    mutable std::mutex m_mutex; // guards the members below
    QSettings m_stored;
    QVariantMap m_registered;
};
