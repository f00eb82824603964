#include "foundation/UserDefaults.h"

#include "foundation/Assertion.h"
#include "foundation/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace {

UserDefaults* theStandard = nullptr; // Set at the start of the program, before other threads.

// QSettings reads slashes and backslashes in a key as groups and folds doubled ones, which would make one key of two
// paths. Keys without them stay as people know them.
QString storedKey(const QString& key)
{
    return key.contains(u'/') || key.contains(u'\\') || key.contains(u'%')
               ? QString::fromLatin1(QUrl::toPercentEncoding(key, " ", "/\\%"))
               : key;
}

// QSettings makes its file with the user's mask but keeps the modes of one that is there.
void makeForTheUserAlone(const QString& filePath)
{
    QFile file(filePath);
    if (!file.exists() && file.open(QIODevice::NewOnly | QIODevice::WriteOnly))
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

} // namespace

UserDefaults::UserDefaults(const QString& filePath) : m_stored(filePath, QSettings::IniFormat)
{
    PrivateFolder::make(QFileInfo(filePath).absolutePath());
    m_stored.setAtomicSyncRequired(true);
}

UserDefaults::~UserDefaults()
{
    synchronize();
    if (theStandard == this)
        theStandard = nullptr;
}

UserDefaults& UserDefaults::standard()
{
    Assertion::check(theStandard != nullptr, "no standard user defaults");
    return *theStandard;
}

void UserDefaults::setStandard(UserDefaults* defaults)
{
    theStandard = defaults;
}

void UserDefaults::registerDefaults(const QVariantMap& defaults)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_registered.insert(defaults);
    }
    for (auto entry = defaults.keyBegin(); entry != defaults.keyEnd(); ++entry) {
        if (!isStored(*entry))
            Q_EMIT valueChanged(*entry);
    }
}

QVariant UserDefaults::value(const QString& key) const
{
    const std::scoped_lock lock(m_mutex);
    const QVariant stored = m_stored.value(storedKey(key));
    return stored.isValid() ? stored : m_registered.value(key);
}

bool UserDefaults::isStored(const QString& key) const
{
    const std::scoped_lock lock(m_mutex);
    return m_stored.contains(storedKey(key));
}

void UserDefaults::setValue(const QString& key, const QVariant& value)
{
    if (!value.isValid()) {
        removeValue(key);
        return;
    }
    {
        const std::scoped_lock lock(m_mutex);
        if (m_stored.value(storedKey(key)) == value)
            return;
        makeForTheUserAlone(m_stored.fileName());
        m_stored.setValue(storedKey(key), value);
    }
    Q_EMIT valueChanged(key);
}

void UserDefaults::removeValue(const QString& key)
{
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_stored.contains(storedKey(key)))
            return;
        m_stored.remove(storedKey(key));
    }
    Q_EMIT valueChanged(key);
}

void UserDefaults::synchronize()
{
    const std::scoped_lock lock(m_mutex);
    m_stored.sync();
    QFile::setPermissions(m_stored.fileName(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

bool UserDefaults::isWritable() const
{
    const std::scoped_lock lock(m_mutex);
    return m_stored.isWritable() && m_stored.status() == QSettings::NoError;
}

void UserDefaults::bind(const QString& key, QObject* context, std::function<void(const QVariant&)> apply)
{
    apply(value(key));
    connect(
        this, &UserDefaults::valueChanged, context,
        [this, key, apply = std::move(apply)](const QString& changed) {
            if (changed == key)
                apply(value(key));
        },
        Qt::DirectConnection);
}
