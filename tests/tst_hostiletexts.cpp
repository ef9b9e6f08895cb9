#include "support/gui.h"

#include <QFile>
#include <QHeaderView>
#include <QLocale>
#include <QSettings>
#include <QTextDocumentFragment>

#include <algorithm>

namespace {

struct Text
{
    const char* sent;
    QString shown;
};

const std::initializer_list<Text> texts{
    {"<img src='x'><b>&amp;</b>", "<img src='x'><b>&amp;</b>"},
    {"a\x1b[31m\tb\n\x7f", "a�[31m�b��"},
    {"gate\xe2\x80\xae"
     "tag\xe2\x80\xac",
     "gate�tag�"},                                                    // would turn around what follows
    {"\xe2\x80\xa8\xc2\x9bq", "��q"},                                 // a line separator and a C1 control
    {"\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d", "\u05E9\u05DC\u05D5\u05DD"}, // right-to-left by itself is a name
    {"e\xcc\x81\xcc\x81\xcc\x81", QString("e") + QString(3, QChar(0x301))}, // combining
    {"\xff\xfe", "��"},                                                     // no UTF-8
    {"%1 %s %n &Save", "%1 %s %n &Save"},
    {"WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW", QString(32, 'W')},
};

} // namespace

/// Whatever a camera or a settings file says is shown as text or left alone.
class HostileTextsTest : public gui::GuiTest
{
    Q_OBJECT

    QString details() { return QTextDocumentFragment::fromHtml(text("labelSelectionInfo")).toPlainText(); }

private slots:
    void aCamerasTextsAreShownLiterally()
    {
        for (const Text& text : texts) {
            m_world.cameras = {sdk::with(sdk::camera(), {{"VendorName", text.sent},
                                                         {"ModelName", text.sent},
                                                         {"UserDefinedName", text.sent},
                                                         {"SerialNumber", text.sent},
                                                         {"FriendlyName", text.sent}})};
            openWindow();
            select("02:5E:41:00:00:01");
            QCOMPARE(tree().currentItem()->text(1), text.shown);
            for (const int asciiColumn : {0, 2}) {
                const QString shown = tree().currentItem()->text(asciiColumn);
                QCOMPARE(shown.size(), static_cast<qsizetype>(qstrlen(text.sent)));
                QVERIFY(std::ranges::none_of(shown,
                                             [](QChar c) { return c.category() == QChar::Other_Control; }));
            }
            QCOMPARE(details().count(text.shown.simplified()), 5);
        }
    }

    void settingsThatAreDamagedCostNothing()
    {
        const QString file = QSettings().fileName();
        openOn();
        m_window->close();
        const int width = tree().header()->sectionSize(1);
        for (const QByteArray& content :
             {QByteArray("\0\xff[MainWindow\npos=@Point(", 26), QByteArray(3'000'000, '['),
              QByteArray("[MainWindow]\nheaderver=1\nheader=@ByteArray(garbage)\npos=7\nsize=@Invalid()\n"),
              QByteArray("[MainWindow]\nheaderver=1\npos=@Point(99999999 -7)\nsize=@Size(-5 99999999)\n")}) {
            QFile settings(file);
            QVERIFY(settings.open(QFile::WriteOnly) && settings.write(content) == content.size());
            settings.close();
            openOn();
            QVERIFY(m_window->geometry().intersects(m_window->screen()->geometry()));
            QCOMPARE(tree().header()->sectionSize(1), width);
            m_window->close();
            QVERIFY(!m_window->isVisible());
        }
    }

    void addressesKeepTheirDigitsInEveryLocale()
    {
        QLocale::setDefault(QLocale("ar_EG"));
        openOn();
        enter("editIpAddress", QString("192.168.1.") + QChar(0x0663) + QChar(0x0661));
        QCOMPARE(text("editIpAddress"), "192.168.1.");
        enter("editIpAddress", "192.168.1.31");
        QVERIFY(canSave());
        save();
        QVERIFY(m_world.take().join('\n').contains("192.168.1.31"));
        QLocale::setDefault(QLocale::c());
    }
};

WINDOW_TEST_MAIN(HostileTextsTest)
#include "tst_hostiletexts.moc"
