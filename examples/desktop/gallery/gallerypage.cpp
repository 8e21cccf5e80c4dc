#include "gallery/gallerypage.h"

#include "audio/player.h"
#include "common/desk.h"
#include "common/notice.h"
#include "gallery/catalogue.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

namespace {

constexpr int pictureSize = 72; // pixels
constexpr int cellWidth = 132;
constexpr int cellHeight = 112;

} // namespace

GalleryPage::GalleryPage(Desk *desk, QWidget *parent)
    : QWidget(parent)
    , m_desk(desk)
    , m_player(new Player(this))
    , m_search(new QLineEdit)
    , m_category(new QComboBox)
    , m_voices(new QListView)
    , m_music(new QListView)
    , m_about(new QLabel)
    , m_count(new QLabel)
    , m_notice(new Notice)
    , m_sample(new QPushButton(tr("&Play the sample")))
    , m_use(new QPushButton(tr("&Use for speaking")))
    , m_play(new QPushButton(tr("P&lay the track")))
    , m_stop(new QPushButton(tr("S&top")))
{
    auto *again = new QPushButton(tr("Loa&d again"));
    connect(again, &QPushButton::clicked, desk->catalogue(), &Catalogue::load);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_count, 1);
    bottom->addWidget(m_stop);
    bottom->addWidget(again);
    auto *splitter = new QSplitter;
    splitter->addWidget(makeVoices());
    splitter->addWidget(makeMusic());
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_notice);
    layout->addWidget(splitter, 1);
    layout->addLayout(bottom);

    m_stop->setEnabled(false);
    connect(m_stop, &QPushButton::clicked, m_player, &Player::pause);
    connect(m_player, &Player::playingChanged, m_stop, &QWidget::setEnabled);
    connect(desk->catalogue(), &Catalogue::loaded, this, &GalleryPage::onLoaded);
    connect(desk->catalogue(), &Catalogue::failed, m_notice, &Notice::tell);
    onLoaded();
}

QWidget *GalleryPage::makeVoices()
{
    m_filter.setSourceModel(m_desk->catalogue()->voices());
    m_voices->setModel(&m_filter);
    m_voices->setObjectName(QStringLiteral("voices"));
    m_voices->setAccessibleName(tr("Voices"));
    m_voices->setViewMode(QListView::IconMode);
    m_voices->setMovement(QListView::Static);
    m_voices->setResizeMode(QListView::Adjust);
    m_voices->setLayoutMode(QListView::Batched);
    m_voices->setUniformItemSizes(true);
    m_voices->setWordWrap(true);
    m_voices->setIconSize({pictureSize, pictureSize});
    m_voices->setGridSize({cellWidth, cellHeight});
    m_about->setTextFormat(Qt::PlainText);
    m_search->setPlaceholderText(tr("Name, category or scene"));
    m_search->setAccessibleName(tr("Search for voices"));
    m_search->setClearButtonEnabled(true);
    m_category->setAccessibleName(tr("Category"));

    connect(m_search, &QLineEdit::textChanged, &m_filter,
            &QSortFilterProxyModel::setFilterFixedString);
    connect(m_category, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { m_filter.setCategory(m_category->currentData().toString()); });
    connect(&m_filter, &QAbstractItemModel::rowsInserted, this, &GalleryPage::showCounts);
    connect(&m_filter, &QAbstractItemModel::rowsRemoved, this, &GalleryPage::showCounts);
    const auto current = [this](int role) {
        return m_voices->currentIndex().data(role).toString();
    };
    connect(m_sample, &QPushButton::clicked, this,
            [=] { listen(current(VoiceModel::SampleRole)); });
    connect(m_use, &QPushButton::clicked, this,
            [=] { Q_EMIT chosen(current(VoiceModel::VoiceRole)); });
    connect(m_voices, &QAbstractItemView::activated, m_sample, &QPushButton::click);
    connect(m_voices->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &index) {
                m_sample->setEnabled(index.isValid());
                m_use->setEnabled(index.isValid());
                m_about->setText(index.data(Qt::ToolTipRole).toString());
            });

    auto *filters = new QHBoxLayout;
    filters->addWidget(m_search, 1);
    filters->addWidget(m_category);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_sample);
    buttons->addWidget(m_use);
    buttons->addWidget(m_about, 1);
    auto *voices = new QWidget;
    auto *layout = new QVBoxLayout(voices);
    layout->setContentsMargins({});
    layout->addLayout(filters);
    layout->addWidget(m_voices, 1);
    layout->addLayout(buttons);
    return voices;
}

QWidget *GalleryPage::makeMusic()
{
    m_music->setModel(m_desk->catalogue()->music());
    m_music->setAccessibleName(tr("Background music"));
    m_music->setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(m_play, &QPushButton::clicked, this,
            [this] { listen(m_desk->catalogue()->musicAddress(m_music->currentIndex().row())); });
    connect(m_music, &QAbstractItemView::activated, m_play, &QPushButton::click);
    connect(m_music->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &index) { m_play->setEnabled(index.isValid()); });

    auto *label = new QLabel(tr("Background &music"));
    label->setBuddy(m_music);
    auto *music = new QWidget;
    auto *layout = new QVBoxLayout(music);
    layout->setContentsMargins({});
    layout->addWidget(label);
    layout->addWidget(m_music, 1);
    layout->addWidget(m_play, 0, Qt::AlignLeft);
    return music;
}

void GalleryPage::onLoaded()
{
    const QString before = m_category->currentData().toString();
    m_category->clear();
    m_category->addItem(tr("All categories"), QString());
    const QStringList categories = m_desk->catalogue()->voices()->categories();
    for (const QString &category : categories)
        m_category->addItem(category, category);
    m_category->setCurrentIndex(qMax(0, m_category->findData(before)));
    for (QPushButton *button : {m_sample, m_use, m_play})
        button->setEnabled(false);
    if (m_filter.sourceModel()->rowCount() > 0)
        m_notice->tell({});
    showCounts();
}

void GalleryPage::showCounts()
{
    const int all = m_filter.sourceModel()->rowCount();
    if (all > 0)
        m_count->setText(tr("%1 of %2 voices").arg(m_filter.rowCount()).arg(all));
    else
        m_count->setText(m_desk->catalogue()->hasVoices() ? tr("The catalogue is empty")
                                                          : QString());
}

void GalleryPage::listen(const QString &address)
{
    m_desk->catalogue()->fetch(address, this, [this](const QString &path, const QString &problem) {
        m_notice->tell(problem);
        if (!problem.isEmpty())
            return;
        if (!m_player->load(path))
            return m_notice->tell(tr("The recording cannot be played"));
        if (m_player->isSilent())
            m_notice->tell(tr("There is no audio device: nothing is heard"));
        m_player->play();
    });
}
