// The properties of a job that depend on nothing else, and the readers of those that do.
#include "model/Job.h"

QString Job::deponentFirstName() const
{
    return copied(m_deponentFirstName);
}

void Job::setDeponentFirstName(const QString& deponentFirstName)
{
    change(m_deponentFirstName, deponentFirstName, &Job::deponentFirstNameChanged);
}

QString Job::deponentLastName() const
{
    return copied(m_deponentLastName);
}

void Job::setDeponentLastName(const QString& deponentLastName)
{
    change(m_deponentLastName, deponentLastName, &Job::deponentLastNameChanged);
}

QDateTime Job::depositionDate() const
{
    return copied(m_depositionDate);
}

void Job::setDepositionDate(const QDateTime& depositionDate)
{
    change(m_depositionDate, depositionDate, &Job::depositionDateChanged);
}

QString Job::shortCaption() const
{
    return copied(m_shortCaption);
}

void Job::setShortCaption(const QString& shortCaption)
{
    change(m_shortCaption, shortCaption, &Job::shortCaptionChanged);
}

int Job::deliveryFormat() const
{
    return copied(m_deliveryFormat);
}

void Job::setDeliveryFormat(int deliveryFormat)
{
    change(m_deliveryFormat, deliveryFormat, &Job::deliveryFormatChanged);
}

std::optional<int> Job::orderNum() const
{
    return copied(m_orderNum);
}

void Job::setOrderNum(std::optional<int> orderNum)
{
    change(m_orderNum, orderNum, &Job::orderNumChanged);
}

std::optional<int> Job::depoNum() const
{
    return copied(m_depoNum);
}

void Job::setDepoNum(std::optional<int> depoNum)
{
    change(m_depoNum, depoNum, &Job::depoNumChanged);
}

QVariant Job::man24ProdID() const
{
    return copied(m_man24ProdID);
}

void Job::setMan24ProdID(const QVariant& man24ProdID)
{
    store(m_man24ProdID, man24ProdID);
}

QVariant Job::man48ProdID() const
{
    return copied(m_man48ProdID);
}

void Job::setMan48ProdID(const QVariant& man48ProdID)
{
    store(m_man48ProdID, man48ProdID);
}

QVariant Job::man72ProdID() const
{
    return copied(m_man72ProdID);
}

void Job::setMan72ProdID(const QVariant& man72ProdID)
{
    store(m_man72ProdID, man72ProdID);
}

QVariant Job::unattendedProdID() const
{
    return copied(m_unattendedProdID);
}

void Job::setUnattendedProdID(const QVariant& unattendedProdID)
{
    store(m_unattendedProdID, unattendedProdID);
}

QVariant Job::autoSyncProdID() const
{
    return copied(m_autoSyncProdID);
}

void Job::setAutoSyncProdID(const QVariant& autoSyncProdID)
{
    store(m_autoSyncProdID, autoSyncProdID);
}

QVariant Job::man24Rate() const
{
    return copied(m_man24Rate);
}

void Job::setMan24Rate(const QVariant& man24Rate)
{
    changeRate(m_man24Rate, man24Rate, &Job::man24RateChanged, /*isRushable=*/true);
}

QVariant Job::man48Rate() const
{
    return copied(m_man48Rate);
}

void Job::setMan48Rate(const QVariant& man48Rate)
{
    changeRate(m_man48Rate, man48Rate, &Job::man48RateChanged, /*isRushable=*/false);
}

QVariant Job::man72Rate() const
{
    return copied(m_man72Rate);
}

void Job::setMan72Rate(const QVariant& man72Rate)
{
    changeRate(m_man72Rate, man72Rate, &Job::man72RateChanged, /*isRushable=*/false);
}

QVariant Job::unattendedRate() const
{
    return copied(m_unattendedRate);
}

void Job::setUnattendedRate(const QVariant& unattendedRate)
{
    changeRate(m_unattendedRate, unattendedRate, &Job::unattendedRateChanged, /*isRushable=*/false);
}

QVariant Job::autoSyncRate() const
{
    return copied(m_autoSyncRate);
}

void Job::setAutoSyncRate(const QVariant& autoSyncRate)
{
    changeRate(m_autoSyncRate, autoSyncRate, &Job::autoSyncRateChanged, /*isRushable=*/true);
}

QVariant Job::rushRateMultiplier() const
{
    return copied(m_rushRateMultiplier);
}

void Job::setRushRateMultiplier(const QVariant& rushRateMultiplier)
{
    changeRate(m_rushRateMultiplier, rushRateMultiplier, &Job::rushRateMultiplierChanged, /*isRushable=*/true);
}

QVariant Job::man24RushRate() const
{
    return copied(m_man24RushRate);
}

void Job::setMan24RushRate(const QVariant& man24RushRate)
{
    change(m_man24RushRate, man24RushRate, &Job::man24RushRateChanged);
}

QVariant Job::autoSyncRushRate() const
{
    return copied(m_autoSyncRushRate);
}

void Job::setAutoSyncRushRate(const QVariant& autoSyncRushRate)
{
    change(m_autoSyncRushRate, autoSyncRushRate, &Job::autoSyncRushRateChanged);
}

QString Job::jobTotal() const
{
    return copied(m_jobTotal);
}

void Job::setJobTotal(const QString& jobTotal)
{
    change(m_jobTotal, jobTotal, &Job::jobTotalChanged);
}

bool Job::serverJob() const
{
    return copied(m_serverJob);
}

void Job::setServerJob(bool serverJob)
{
    store(m_serverJob, serverJob);
}

bool Job::transcriptUploaded() const
{
    return copied(m_transcriptUploaded);
}

void Job::setTranscriptUploaded(bool transcriptUploaded)
{
    store(m_transcriptUploaded, transcriptUploaded);
    Q_EMIT rowChanged(); // It is saved with the job.
}

QUrl Job::transcriptFileURL() const
{
    return copied(m_transcriptFileURL);
}

void Job::setTranscriptFileURL(const QUrl& transcriptFileURL)
{
    store(m_transcriptFileURL, transcriptFileURL);
}

bool Job::rush() const
{
    return copied(m_rush);
}

bool Job::viaInterpreter() const
{
    return copied(m_viaInterpreter);
}

int Job::processingLevel() const
{
    return copied(m_processingLevel);
}
