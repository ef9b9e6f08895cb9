#include "failurereports.h"

#include "ipconfigurationwidget.h"
#include "trace.h"

#include "qtbase/messages.h"

bool showFailure(const char* operation, const std::function<bool()>& step, const QString& text)
{
    try {
        return step();
    } catch (const std::exception& exception) {
        showException(operation, exception, text, nullptr);
    } catch (...) {
        showUnexpectedException(
            operation, text.isEmpty() ? IpConfigurationWidget::tr("Unknown exception occurred") : text,
            nullptr);
    }
    return false;
}

void logFailure(const char* headline, const char* operation, const std::function<void()>& step)
{
    try {
        step();
    } catch (const GenICam::GenericException& exception) {
        qWarning("%s", headline);
        qWarning() << operation << ": " << exception;
    } catch (const std::exception& exception) {
        qWarning("%s", headline);
        qWarning() << operation << ": " << exception;
    } catch (...) {
        qWarning("%s", headline);
        qWarning("%s: Unspecified exception occurred.", operation);
    }
}
