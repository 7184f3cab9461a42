#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"

/// For which game versions a resource is meant. The texts are opaque: nothing here orders them.
struct VersionObj
{
    QString version;     ///< the one version, when kind is 0
    QString lowVersion;  ///< the lower bound, when kind is 1
    QString highVersion; ///< the upper bound, when kind is 1
    quint32 kind = 0;    ///< 0: one version; 1: a range
};

/// What is known about one resource: where it comes from, what it is for and what it needs.
///
/// The service describes a resource in a JSON object; a copy of it lies in the file "<id>.inf"
/// beside the downloaded file, so that the resource is known without a network. Copies are
/// independent. For the thread of its owner only.
class RIVETCORE_EXPORT ResInfo
{
public:
    ResInfo();
    ResInfo(const ResInfo &other);
    ResInfo &operator=(const ResInfo &other);
    virtual ~ResInfo();

    /// Takes the record from its .inf file; false if that is missing or broken.
    virtual bool loadFromCache() = 0;
    /// Takes the record from the service's object; false if that is no usable record.
    virtual bool loadFromRemote(const QJsonObject &object) = 0;

    uint resId() const { return m_resId; }
    void setResId(uint id) { m_resId = id; }
    ResType resType() const { return m_resType; }
    void setResType(ResType type) { m_resType = type; }

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QString desc() const { return m_desc; }
    void setDesc(const QString &desc) { m_desc = desc; }
    /// URL of a picture that illustrates the resource.
    QString descPic() const { return m_descPic; }
    void setDescPic(const QString &url) { m_descPic = url; }

    /// The version of a game client; every other resource has versionObj() instead.
    QString resVersion() const { return m_resVersion; }
    void setResVersion(const QString &version) { m_resVersion = version; }
    VersionObj versionObj() const { return m_versionObj; }
    void setVersionObj(const VersionObj &versionObj) { m_versionObj = versionObj; }

    /// Keys of the resources that this one needs, in order.
    QList<quint64> dependsOnList() const { return m_dependsOnList; }
    void setDependsOnList(QList<quint64> keys) { m_dependsOnList = std::move(keys); }

    QString downloadUrl() const { return m_downloadUrl; }
    void setDownloadUrl(const QString &url) { m_downloadUrl = url; }
    /// The theme of a skin or cloak.
    uint themeId() const { return m_themeId; }
    void setThemeId(uint id) { m_themeId = id; }

    /// What stands in the .inf file; empty without an id or a type.
    QJsonObject toJsonObj() const;

    /// Removes the .inf file; false if there is none or it can't go.
    bool deleteCache();

protected:
    /// "<download directory of the type>/<id>.inf".
    QString resCachePathFile() const;
    /// Writes the .inf file. A failure is a line on the log; the record stays good.
    void saveToCache();

private:
    uint m_resId = 0;
    ResType m_resType = ResType(0);
    QString m_name;
    QString m_desc;
    QString m_descPic;
    QString m_resVersion;
    VersionObj m_versionObj;
    QList<quint64> m_dependsOnList;
    QString m_downloadUrl;
    uint m_themeId = 0;
};
