#include "common/desk.h"
#include "common/notice.h"
#include "gallery/catalogue.h"
#include "hostkit/cataloguejobs.h"
#include "mainwindow.h"
#include "recognize/keptrows.h"
#include "start/startpage.h"
#include "tests/system/home.h"
#include "translations/translations.h"
#include "update/updatebanner.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QSettings>
#include <QStackedWidget>
#include <QStyleFactory>
#include <QtTest>

#include <memory>
#include <optional>

namespace {

constexpr int startPage = -1; // besides the numbers of the pages
constexpr QSize smallest(1024, 700);

template <typename... Kinds>
bool isOneOf(const QWidget *widget)
{
    return (... || qobject_cast<const Kinds *>(widget));
}

// What a user does something with. Parts of such widgets are reached through the whole.
bool isInteractive(const QWidget *widget)
{
    const bool isPart = isOneOf<QScrollBar, QHeaderView>(widget)
                        || isOneOf<QLineEdit, QComboBox, QAbstractItemView>(widget->parentWidget());
    return !isPart
           && isOneOf<QAbstractButton, QAbstractItemView, QAbstractSlider, QComboBox, QLineEdit,
                      QPlainTextEdit>(widget);
}

QString described(const QWidget *widget)
{
    return QStringLiteral("%1 \"%2\" %3")
        .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName(),
             widget->property("text").toString());
}

QString mnemonicText(const QWidget *widget)
{
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (const auto *group = qobject_cast<const QGroupBox *>(widget))
        return group->title();
    const auto *label = qobject_cast<const QLabel *>(widget);
    return label && label->buddy() ? label->text() : QString();
}

// Whether all of the text can be seen.
bool isWhole(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget); label && label->wordWrap())
        return label->height() >= label->heightForWidth(label->width());
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget))
        return edit->width() - 16 >= edit->fontMetrics().horizontalAdvance(edit->placeholderText());
    if (const auto *header = qobject_cast<const QHeaderView *>(widget)) {
        for (int section = 0; section < header->count(); ++section) {
            if (header->sectionSize(section) < header->sectionSizeHint(section))
                return false;
        }
    }
    if (const auto *list = qobject_cast<const QListWidget *>(widget))
        return list->viewport()->width() >= list->sizeHintForColumn(0);
    if (!isOneOf<QLabel, QAbstractButton, QComboBox, QProgressBar>(widget))
        return true;
    const QSize hint = widget->sizeHint();
    return widget->width() >= hint.width() && widget->height() >= hint.height();
}

} // namespace

/// Every page in both languages, as it is seen, heard and reached by the keyboard. Nobody answers
/// as the service.
class TestLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QApplication::setOrganizationName(QStringLiteral("VoNetwork"));
        QApplication::setApplicationName(QStringLiteral("vodesk"));
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        KeptRows::keep({KeptRows::newName(),
                        QStringLiteral("/a.wav"),
                        true,
                        QStringLiteral("good morning"),
                        {}});
    }

    void cleanup()
    {
        m_window.reset();
        m_desk.reset();
        Translations::install(QLocale::c());
    }

    void everyWidgetHasANameAndARole_data() { pages(); }
    void everyWidgetHasANameAndARole()
    {
        open();
        QStringList nameless;
        for (const QWidget *widget : seen()) {
            if (!isInteractive(widget) && !isOneOf<QLabel, QProgressBar>(widget))
                continue;
            const QAccessibleInterface *face =
                QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
            const auto *label = qobject_cast<const QLabel *>(widget);
            const bool isBlank = label && label->text().isEmpty();
            if (face->role() == QAccessible::Client
                || (face->text(QAccessible::Name).isEmpty() && !isBlank))
                nameless.append(described(widget));
        }
        QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(QLatin1Char('\n'))));
    }

    void everyWidgetIsReachedByTab_data() { pages(); }
    void everyWidgetIsReachedByTab()
    {
        open();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QSet<const QWidget *> reached;
        for (int i = 0; i < 100; ++i) {
            QTest::keyClick(m_window->windowHandle(), Qt::Key_Tab);
            reached.insert(QApplication::focusWidget());
        }
        QStringList unreached;
        for (const QWidget *widget : seen()) {
            if (isInteractive(widget) && widget->isEnabled() && !reached.contains(widget))
                unreached.append(described(widget));
        }
        QVERIFY2(unreached.isEmpty(), qPrintable(unreached.join(QLatin1Char('\n'))));
    }

    void everyMnemonicIsThereOnce_data() { pages(); }
    void everyMnemonicIsThereOnce()
    {
        open();
        QMap<QString, QStringList> users;
        QStringList without;
        for (const QWidget *widget : seen()) {
            const QString text = mnemonicText(widget);
            const QString keys = QKeySequence::mnemonic(text).toString();
            if (!keys.isEmpty())
                users[keys].append(text);
            else if (qobject_cast<const QAbstractButton *>(widget) && !text.isEmpty())
                without.append(text);
        }
        QStringList shared;
        for (const QStringList &texts : users) {
            if (texts.size() > 1)
                shared.append(texts.join(QStringLiteral(" | ")));
        }
        QVERIFY2(shared.isEmpty(), qPrintable(shared.join(QLatin1Char('\n'))));
        QVERIFY2(without.isEmpty(), qPrintable(without.join(QLatin1Char('\n'))));
        QVERIFY(users.size() > 2);
    }

    void noTextIsCutOff_data() { pages(); }
    void noTextIsCutOff()
    {
        open();
        QCOMPARE(m_window->size(), smallest);
        QStringList cut;
        for (const QWidget *widget : seen()) {
            if (!isWhole(widget))
                cut.append(QStringLiteral("%1: %2 x %3 of %4 x %5")
                               .arg(described(widget))
                               .arg(widget->width())
                               .arg(widget->height())
                               .arg(widget->sizeHint().width())
                               .arg(widget->sizeHint().height()));
        }
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QLatin1Char('\n'))));
    }

private:
    static void pages()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<int>("page");
        for (const QLocale &locale :
             {QLocale(QLocale::English), QLocale(QLocale::Chinese, QLocale::China)}) {
            for (int page = startPage; page < 5; ++page)
                QTest::addRow("%s, page %d", qPrintable(locale.name()), page) << locale << page;
        }
    }

    // Opens the window with the page of the row, with all that can be told besides it.
    void open()
    {
        QFETCH(const QLocale, locale);
        QFETCH(const int, page);
        QSettings().clear();
        Translations::install(locale);
        m_desk = std::make_unique<Desk>();
        QVector<DubInfo> voices(3);
        for (DubInfo &voice : voices)
            voice.name = voice.category = voice.scene = QStringLiteral("Reading aloud");
        m_desk->catalogue()->voices()->setVoices(voices);
        m_window = std::make_unique<MainWindow>(m_desk.get());
        const QString reason = QStringLiteral("cannot reach https://localhost:8443: refused");
        m_window->findChild<UpdateBanner *>()->tell({Update::State::NewerIsThere,
                                                     QStringLiteral("1.1.1.26"),
                                                     QStringLiteral("1.2.0.0"),
                                                     {QStringLiteral("Speaks faster")},
                                                     QStringLiteral("https://speech.example/")});
        Q_EMIT m_desk->serviceSought(false);
        for (auto *notice : m_window->findChildren<Notice *>())
            notice->tell(reason);
        m_window->showPage(qMax(0, page));
        if (page == startPage)
            qobject_cast<QStackedWidget *>(m_window->centralWidget())
                ->setCurrentWidget(m_window->findChild<StartPage *>());
        m_window->resize(smallest);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        for (auto *view : m_window->findChildren<QAbstractItemView *>())
            view->setCurrentIndex(view->model() ? view->model()->index(0, 0) : QModelIndex());
        m_window->showPage(qMax(0, page));
        QCoreApplication::processEvents();
    }

    QVector<QWidget *> seen() const
    {
        QVector<QWidget *> widgets;
        for (auto *widget : m_window->findChildren<QWidget *>()) {
            if (widget->isVisible())
                widgets.append(widget);
        }
        return widgets;
    }

    const Home m_home;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainWindow> m_window;
};

QTEST_MAIN(TestLayout)
#include "tst_layout.moc"
