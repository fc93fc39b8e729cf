#include "app/pane/pane_sorting.hpp"

#include <QCollator>
#include <QCollatorSortKey>

#include <algorithm>
#include <numeric>
#include <vector>

namespace perchftp::app {

namespace {

QString const& textField(PaneEntry const& entry, QString const& key)
{
    if (key == u"permissions") {
        return entry.permissions;
    }
    if (key == u"modifiedAt") {
        return entry.modifiedAt;
    }
    return entry.name;
}

// One descriptor made ready for many comparisons: text keys are turned into collation keys once,
// so that sorting 100,000 rows costs one key per row and cheap comparisons after that.
class PreparedKey {
public:
    PreparedKey(PaneEntries const& entries, PaneSortDescriptor const& descriptor, QCollator const& collator)
        : m_entries(entries), m_ascending(descriptor.ascending)
    {
        if (descriptor.key == u"sizeValue") {
            m_kind = Kind::Size;
        } else if (descriptor.key == u"name" || descriptor.key == u"permissions" || descriptor.key == u"modifiedAt") {
            m_kind = Kind::Text;
            m_textKeys.reserve(std::size_t(entries.size()));
            for (PaneEntry const& entry : entries) {
                // Folding first keeps the comparison case-blind where the collator is not, as under
                // the C locale.
                m_textKeys.push_back(collator.sortKey(textField(entry, descriptor.key).toCaseFolded()));
            }
        }
    }

    // Negative, zero or positive, as row `left` sorts before, with or after row `right`.
    int compare(int left, int right) const
    {
        int result = 0;
        switch (m_kind) {
        case Kind::Size: {
            quint64 const a = m_entries[left].sizeValue;
            quint64 const b = m_entries[right].sizeValue;
            result = a < b ? -1 : (a > b ? 1 : 0);
            break;
        }
        case Kind::Text:
            result = m_textKeys[std::size_t(left)].compare(m_textKeys[std::size_t(right)]);
            break;
        case Kind::Unknown:
            break;
        }
        return m_ascending ? result : -result;
    }

private:
    enum class Kind { Unknown, Size, Text };

    PaneEntries const& m_entries;
    bool m_ascending;
    Kind m_kind = Kind::Unknown;
    std::vector<QCollatorSortKey> m_textKeys;
};

} // namespace

QList<int> paneSortOrder(PaneEntries const& entries, QList<PaneSortDescriptor> const& descriptors)
{
    QList<int> order(entries.size());
    std::iota(order.begin(), order.end(), 0);
    if (descriptors.isEmpty() || entries.size() < 2) {
        return order;
    }
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<PreparedKey> keys;
    keys.reserve(std::size_t(descriptors.size()));
    for (PaneSortDescriptor const& descriptor : descriptors) {
        keys.emplace_back(entries, descriptor, collator);
    }
    std::stable_sort(order.begin(), order.end(), [&keys](int left, int right) {
        for (PreparedKey const& key : keys) {
            if (int const result = key.compare(left, right); result != 0) {
                return result < 0;
            }
        }
        return false;
    });
    return order;
}

void sortPaneEntries(PaneEntries& entries, QList<PaneSortDescriptor> const& descriptors)
{
    if (descriptors.isEmpty() || entries.size() < 2) {
        return;
    }
    QList<int> const order = paneSortOrder(entries, descriptors);
    PaneEntries sorted;
    sorted.reserve(entries.size());
    for (int const row : order) {
        sorted.append(std::move(entries[row]));
    }
    entries = std::move(sorted);
}

QList<PaneSortDescriptor> descriptorsAfterHeaderClick(QList<PaneSortDescriptor> descriptors, QString const& key)
{
    if (!descriptors.isEmpty() && descriptors.first().key == key) {
        descriptors.first().ascending = !descriptors.first().ascending;
        return descriptors;
    }
    descriptors.removeIf([&key](PaneSortDescriptor const& descriptor) { return descriptor.key == key; });
    descriptors.prepend(PaneSortDescriptor{key, true});
    return descriptors;
}

} // namespace perchftp::app
