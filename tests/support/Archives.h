#pragma once

#include <QByteArray>
#include <QVector>

#include <archive.h>
#include <archive_entry.h>

#include "platform/Utf8Names.h"

/// An entry, and what is untrue about it.
struct Item
{
    QByteArray name;
    QByteArray data = "x";
    unsigned mode = 0100644;
    quint16 flags = 0;
    quint16 method = 0;
    int sizeLie = 0;
    int placeLie = 0;
    quint32 checksumLie = 0;
    QByteArray localName = name; ///< of the same length
};
using Items = QVector<Item>;

/// Honest archives; @p kind is libarchive's name of a format and perhaps one of a filter. An entry
/// whose mode is that of a link points to its data; one of mode 0 is a hard link.
inline QByteArray archiveOf(const QByteArray &kind, const Items &items)
{
    const platform::Utf8Names utf8;
    QByteArray file(4 << 20, '\0');
    size_t used = 0;
    archive *out = archive_write_new();
    archive_write_set_format_by_name(out, kind.split(' ').first());
    if (kind.contains(' '))
        archive_write_add_filter_by_name(out, kind.split(' ').last());
    archive_write_set_bytes_in_last_block(out, 1);
    archive_write_open_memory(out, file.data(), size_t(file.size()), &used);
    archive_entry *entry = archive_entry_new();
    for (const Item &item : items) {
        archive_entry_clear(entry);
        archive_entry_set_pathname(entry, item.name);
        archive_entry_set_mode(entry, item.mode ? item.mode : 0100644);
        if (item.mode == 0)
            archive_entry_set_hardlink(entry, item.data);
        else if (item.mode == 0120777)
            archive_entry_set_symlink(entry, item.data);
        else
            archive_entry_set_size(entry, item.data.size() + (qint64(item.sizeLie) << 40));
        archive_write_header(out, entry);
        archive_write_data(out, item.data.constData(), size_t(item.data.size()));
    }
    archive_entry_free(entry);
    archive_write_free(out);
    return file.left(int(used));
}
