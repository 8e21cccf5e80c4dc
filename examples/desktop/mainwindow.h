#pragma once

#include <QMainWindow>

class Desk;
class QListWidget;
class QPushButton;
class QStackedWidget;
class RecognizePage;
class SpeakPage;
class StartPage;
class UpdateBanner;
struct Reason;

/// The window: the pages, a list to choose one, and the page that helps while there is no service.
class MainWindow : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY(MainWindow)

public:
    /// @p desk outlives the window.
    explicit MainWindow(Desk *desk, QWidget *parent = nullptr);

    /// Asks the service whether it is there, and for what the pages show.
    void connectToService();

    void showPage(int page);
    int pageCount() const;

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void addPage(const QString &name, QWidget *page);
    void restoreState();
    void onFailed(const Reason &reason);

    Desk *m_desk;
    QStackedWidget *m_stack; ///< The start page, and the rest.
    StartPage *m_start;
    UpdateBanner *m_banner;
    QPushButton *m_gone; ///< Seen while the service cannot be reached.
    QListWidget *m_names;
    QStackedWidget *m_pages;
    SpeakPage *m_speak;
    RecognizePage *m_recognize;
    bool m_mayLoseText = false; ///< The user knows that it cannot be kept.
};
