#include "ui/ProtectedTermsEditor.h"

#include "platform/Dialogs.h"
#include "platform/PlatformServices.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "ui/TermOrdering.h"
#include "ui/WelcomeGuideStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPushButton>
#include <QSet>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace glyphmill {

namespace {

constexpr int sheetWidth = 480;
constexpr int sheetHeight = 380;
constexpr int minimumTableHeight = 280;
constexpr int barPadding = 12;
constexpr int barSpacing = 12;
constexpr int controlButtonWidth = 28;
constexpr int controlButtonHeight = 22;
constexpr qreal controlCornerRadius = 6;

QString toQString(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

std::u16string toU16String(const QString &text) {
    return {reinterpret_cast<const char16_t *>(text.utf16()), static_cast<std::size_t>(text.size())};
}

// A thin line that shows on light and dark windows alike.
QColor separatorColor(const QPalette &palette) {
    QColor color = palette.color(QPalette::WindowText);
    color.setAlphaF(0.22f);
    return color;
}

// A plus or minus drawn in the palette's button text colour, with a dimmed disabled form, so the
// control needs no icon theme and follows a dark palette.
QIcon signIcon(bool plus, const QPalette &palette) {
    constexpr int size = 12;
    constexpr int pixelScale = 2;
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
        QPixmap pixmap(size * pixelScale, size * pixelScale);
        pixmap.setDevicePixelRatio(pixelScale);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPalette::ColorGroup group = mode == QIcon::Normal ? QPalette::Active : QPalette::Disabled;
        painter.setPen(QPen(palette.color(group, QPalette::ButtonText), 1.5, Qt::SolidLine, Qt::RoundCap));
        const qreal middle = size / 2.0;
        painter.drawLine(QPointF(1.5, middle), QPointF(size - 1.5, middle));
        if (plus)
            painter.drawLine(QPointF(middle, 1.5), QPointF(middle, size - 1.5));
        painter.end();
        icon.addPixmap(pixmap, mode);
    }
    return icon;
}

// The add and remove buttons on one rounded, bordered background with a divider between them.
class AddRemoveControl final : public QWidget {
public:
    AddRemoveControl(QWidget *parent) : QWidget(parent) {
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(1);
        addButton = makeButton(ProtectedTermsEditor::tr("Add term"));
        removeButton = makeButton(ProtectedTermsEditor::tr("Remove selected terms"));
        layout->addWidget(addButton);
        layout->addWidget(removeButton);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        paintIcons();
    }

    QToolButton *addButton = nullptr;
    QToolButton *removeButton = nullptr;

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        QPainterPath outline;
        outline.addRoundedRect(frame, controlCornerRadius, controlCornerRadius);
        painter.fillPath(outline, palette().color(QPalette::Base));
        painter.setPen(QPen(separatorColor(palette()), 1));
        painter.drawPath(outline);
        const qreal divider = controlButtonWidth + 0.5;
        painter.drawLine(QPointF(divider, frame.top() + 4), QPointF(divider, frame.bottom() - 4));
    }
    void changeEvent(QEvent *event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            paintIcons();
    }

private:
    QToolButton *makeButton(const QString &name) {
        auto *button = new QToolButton(this);
        button->setAutoRaise(true);
        button->setFixedSize(controlButtonWidth, controlButtonHeight);
        button->setIconSize(QSize(12, 12));
        button->setAccessibleName(name);
        button->setToolTip(name);
        return button;
    }
    void paintIcons() {
        addButton->setIcon(signIcon(true, palette()));
        removeButton->setIcon(signIcon(false, palette()));
    }
};

} // namespace

ProtectedTermsEditor::ProtectedTermsEditor(ProtectedTermsStore &store, QWidget *parent)
    : QDialog(parent), store_(store) {
    setWindowTitle(tr("Protected Terms"));
    setFixedSize(sheetWidth, sheetHeight);

    table_ = new QTableWidget(0, 1, this);
    table_->setHorizontalHeaderLabels({tr("Term")});
    table_->setAlternatingRowColors(true);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setShowGrid(false);
    table_->setWordWrap(false);
    table_->setMinimumHeight(minimumTableHeight);
    table_->verticalHeader()->hide();
    // Compact rows, as in a list of names; the style's default is meant for editable cells.
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    QHeaderView *header = table_->horizontalHeader();
    header->setStretchLastSection(true);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // The rows always follow one order; the indicator says which.
    header->setSortIndicatorShown(true);
    header->setSortIndicator(0, Qt::AscendingOrder);
    header->setSectionsClickable(false);

    auto *control = new AddRemoveControl(this);
    addButton_ = control->addButton;
    removeButton_ = control->removeButton;
    restoreButton_ = new QPushButton(tr("Restore Defaults"), this);
    restoreButton_->setAutoDefault(false);
    doneButton_ = new QPushButton(tr("Done"), this);
    doneButton_->setDefault(true);
    // Focus starts on "Done", so no row looks picked before the user picks one.
    doneButton_->setFocus();

    // The window's side margins pad the bar at its ends.
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(0, barPadding, 0, barPadding);
    bar->setSpacing(barSpacing);
    bar->addWidget(control);
    bar->addStretch(1);
    bar->addWidget(restoreButton_);
    bar->addWidget(doneButton_);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(barPadding, barPadding, barPadding, 0);
    column->setSpacing(0);
    column->addWidget(table_, 1);
    column->addLayout(bar);

    connect(addButton_, &QToolButton::clicked, this, &ProtectedTermsEditor::addTerm);
    connect(removeButton_, &QToolButton::clicked, this, &ProtectedTermsEditor::removeSelectedTerms);
    connect(restoreButton_, &QPushButton::clicked, this, &ProtectedTermsEditor::restoreDefaults);
    connect(doneButton_, &QPushButton::clicked, this, &QDialog::accept);
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ProtectedTermsEditor::updateRemoveButton);

    observerToken_ = store_.addObserver([this](const std::vector<std::u16string> &terms) { reload(terms); });
    reload(store_.terms());
    welcomeStyle::giveButtonsRoom(*this);
}

ProtectedTermsEditor::~ProtectedTermsEditor() {
    store_.removeObserver(observerToken_);
}

std::vector<std::u16string> ProtectedTermsEditor::displayedTerms() const {
    std::vector<std::u16string> shown;
    shown.reserve(std::size_t(table_->rowCount()));
    for (int row = 0; row < table_->rowCount(); ++row)
        shown.push_back(toU16String(table_->item(row, 0)->text()));
    return shown;
}

// Rows are identified by their text, so a selection survives a change elsewhere in the list.
void ProtectedTermsEditor::reload(const std::vector<std::u16string> &terms) {
    QSet<QString> selected;
    for (const QModelIndex &index : table_->selectionModel()->selectedRows())
        selected.insert(index.data().toString());

    const std::vector<std::u16string> rows = termOrdering::sortedForDisplay(terms);
    {
        const QSignalBlocker blocker(table_->selectionModel());
        table_->clearSelection();
        table_->setRowCount(int(rows.size()));
        for (int row = 0; row < int(rows.size()); ++row) {
            auto *item = new QTableWidgetItem(toQString(rows[std::size_t(row)]));
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            table_->setItem(row, 0, item);
            if (selected.contains(item->text()))
                table_->selectionModel()->select(table_->model()->index(row, 0),
                                                 QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    table_->viewport()->update();
    updateRemoveButton();
}

void ProtectedTermsEditor::updateRemoveButton() {
    removeButton_->setEnabled(table_->selectionModel()->hasSelection());
}

void ProtectedTermsEditor::addTerm() {
    const std::optional<std::u16string> answer = platformServices().dialogs->promptForText(
        tr("Add Protected Term").toStdU16String(),
        tr("Enter a word or phrase to keep exactly as written during transforms.").toStdU16String(), u"LLC");
    if (answer)
        store_.addTerm(*answer);
}

void ProtectedTermsEditor::removeSelectedTerms() {
    std::vector<std::u16string> selected;
    for (const QModelIndex &index : table_->selectionModel()->selectedRows())
        selected.push_back(toU16String(index.data().toString()));
    for (const std::u16string &term : selected)
        store_.removeTerm(term);
    table_->clearSelection();
}

void ProtectedTermsEditor::restoreDefaults() {
    store_.restoreDefaultTerms();
    table_->clearSelection();
}

} // namespace glyphmill
