#include "views/ProcessRowsView.h"

#include "views/ProcessRowView.h"

#include <QVBoxLayout>

namespace brenvik {

ProcessRowsView::ProcessRowsView(const QList<ProcessMatch>& matches, const QDateTime& now,
                                 QWidget* parent)
    : QWidget(parent)
    , m_layout(new QVBoxLayout(this)) {
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(6);
    m_layout->addStretch(1);
    setMatches(matches, now);
}

void ProcessRowsView::setMatches(const QList<ProcessMatch>& matches, const QDateTime& now,
                                 const QStringList& places) {
    bool samePIDs = matches.size() == m_rows.size();
    for (qsizetype i = 0; samePIDs && i < matches.size(); ++i)
        samePIDs = matches[i].pid == m_rows[i]->match().pid;
    if (samePIDs) {
        for (qsizetype i = 0; i < matches.size(); ++i)
            m_rows[i]->setMatch(matches[i], now, places.value(i));
        return;
    }
    qDeleteAll(m_rows);
    m_rows.clear();
    for (qsizetype i = 0; i < matches.size(); ++i) {
        auto* row = new ProcessRowView(matches[i], now, this);
        row->setMatch(matches[i], now, places.value(i));
        connect(row, &ProcessRowView::goRequested, this, &ProcessRowsView::goRequested);
        m_layout->insertWidget(m_layout->count() - 1, row);
        m_rows.append(row);
    }
}

} // namespace brenvik
