#include "qtbase/messages.h"

#include "qtbase/failuretexts.h"

#include <QApplication>
#include <QMessageBox>
#include <QStringList>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Messages)
};

struct Message
{
    QMessageBox::Icon icon;
    QString title;
    QStringList paragraphs;
    QString details;
};

/// Puts all paragraphs into the one label of the box whose format can be set; its informative text may be
/// shown as markup whatever that format is.
void show(Message message, QWidget* parent)
{
    message.paragraphs.removeAll(QString());
    QMessageBox box(parent != nullptr ? parent : QApplication::activeWindow());
    box.setIcon(message.icon);
    box.setWindowTitle(message.title);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setText(message.paragraphs.join(QLatin1String("\n\n")));
    box.setDetailedText(message.details);
    box.setStandardButtons(QMessageBox::Ok);
    box.setEscapeButton(QMessageBox::Ok);
    box.exec();
}

QString operationLine(const QString& operationName)
{
    return Texts::tr("Operation: %1").arg(operationName);
}

} // namespace

void showException(const QString& operationName, const std::exception& exception, QWidget* parent)
{
    showException(operationName, exception, QString(), parent);
}

void showException(const QString& operationName, const std::exception& exception, const QString& text,
                   QWidget* parent)
{
    QStringList paragraphs = sentencesOf(exception);
    paragraphs.prepend(text);
    paragraphs.removeAll(QString());
    if (paragraphs.isEmpty()) {
        paragraphs += Texts::tr("The operation failed for an unexpected reason. The details say more.");
    }
    show({.icon = QMessageBox::Critical,
          .title = QGuiApplication::applicationDisplayName(),
          .paragraphs = paragraphs,
          .details = operationLine(operationName) + QLatin1Char('\n') + technicalTextOf(exception)},
         parent);
}

void showUnexpectedException(const QString& operationName, const QString& text, QWidget* parent)
{
    show({.icon = QMessageBox::Critical,
          .title = QGuiApplication::applicationDisplayName(),
          .paragraphs = {text},
          .details = operationLine(operationName)},
         parent);
}

void showWarningMessage(const QString& title, const QString& heading, const QString& text, QWidget* parent)
{
    show({.icon = QMessageBox::Warning, .title = title, .paragraphs = {heading, text}, .details = {}},
         parent);
}
