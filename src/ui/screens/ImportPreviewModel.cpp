// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ImportPreviewModel.h"

#include "QtText.h"
#include "components/PlainText.h"
#include "importer/ImportRow.h"
#include "screens/ImportFlow.h"

#include <array>

namespace vorlane {

namespace {

constexpr std::array headers{"Organization", "Title",   "Type",    "Username",
                             "Host",         "Secrets", "Expires", "Status"};

} // namespace

ImportPreviewModel::ImportPreviewModel(ImportFlow& flow, QStringList organizations, QObject* parent)
    : QAbstractTableModel(parent)
    , m_flow(flow)
    , m_organizations(std::move(organizations)) {
    for (const ServiceType type : ServiceType::allCases()) {
        m_serviceTypes << toQString(type.label());
    }
}

void ImportPreviewModel::reload() {
    beginResetModel();
    endResetModel();
}

int ImportPreviewModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_flow.rowCount());
}

int ImportPreviewModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(headers.size());
}

QVariant ImportPreviewModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const auto row = static_cast<std::size_t>(index.row());
    const ImportRow& source = m_flow.importRow(row);
    if (role == choicesRole) {
        if (index.column() == organization) {
            QStringList choices = m_organizations;
            const QString own = toQString(source.organization);
            if (!own.isEmpty() && !choices.contains(own, Qt::CaseInsensitive)) {
                choices.prepend(own);
            }
            return choices;
        }
        return index.column() == serviceType ? QVariant(m_serviceTypes) : QVariant();
    }
    if (role == Qt::CheckStateRole) {
        if (index.column() == status && source.status == ImportRow::Status::duplicate) {
            return source.keepDuplicate ? Qt::Checked : Qt::Unchecked;
        }
        return {};
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole &&
        role != Qt::AccessibleTextRole) {
        return {};
    }
    const ImportFlow::RowView view = m_flow.row(row);
    QString text;
    switch (index.column()) {
    case organization:
        text = toQString(view.organization);
        break;
    case title:
        text = toQString(view.title);
        break;
    case serviceType:
        text = toQString(view.serviceType);
        break;
    case username:
        text = toQString(view.username);
        break;
    case host:
        text = toQString(view.host);
        break;
    case secrets:
        if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole) {
            return view.secrets.empty() ? QStringLiteral("No secrets")
                                        : QStringLiteral("Has secrets");
        }
        text = toQString(view.secrets);
        break;
    case expiration:
        text = toQString(view.expiration);
        break;
    case status:
        text = toQString(view.status);
        break;
    default:
        return {};
    }
    // The titles and names come from the export file: never read as HTML in a tooltip.
    return role == Qt::ToolTipRole ? QVariant(PlainText::toolTip(text)) : QVariant(text);
}

QVariant ImportPreviewModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 &&
        section < static_cast<int>(headers.size())) {
        return QString::fromLatin1(headers[static_cast<std::size_t>(section)]);
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags ImportPreviewModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (!index.isValid()) {
        return flags;
    }
    const ImportRow& source = m_flow.importRow(static_cast<std::size_t>(index.row()));
    // A rejected row is shown with its reason, but there is nothing in it to change.
    if (source.status == ImportRow::Status::rejected) {
        return flags;
    }
    if (index.column() == organization || index.column() == serviceType) {
        flags |= Qt::ItemIsEditable;
    }
    if (index.column() == status && source.status == ImportRow::Status::duplicate) {
        flags |= Qt::ItemIsUserCheckable;
    }
    return flags;
}

bool ImportPreviewModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || !(flags(index) & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable))) {
        return false;
    }
    const auto row = static_cast<std::size_t>(index.row());
    if (role == Qt::CheckStateRole && index.column() == status) {
        m_flow.setKeepDuplicate(row, value.value<Qt::CheckState>() == Qt::Checked);
    } else if (role == Qt::EditRole && index.column() == organization) {
        const QString name = value.toString().trimmed();
        if (name.isEmpty()) {
            return false;
        }
        m_flow.setRowOrganization(row, toStdString(name));
    } else if (role == Qt::EditRole && index.column() == serviceType) {
        const qsizetype type = m_serviceTypes.indexOf(value.toString());
        if (type < 0) {
            return false;
        }
        m_flow.setRowServiceType(row, ServiceType::allCases()[static_cast<std::size_t>(type)]);
    } else {
        return false;
    }
    // An organization changed here can make or unmake duplicates anywhere in the file.
    Q_EMIT dataChanged(this->index(0, 0), this->index(rowCount() - 1, columnCount() - 1));
    return true;
}

} // namespace vorlane
