#include "trace.h"

#include "ozlog/ozlog.h"

unsigned long GetIPConfigBaseCatID()
{
    static const unsigned long id = ozlog::LogGetCatID("Lanvic.Base");
    return id;
}

QDebug operator<<(QDebug debug, const GenICam::GenericException& exception)
{
    return debug << "Exception occurred:\n"
                 << exception.GetDescription() << "\n"
                 << exception.GetSourceFileName() << ":" << exception.GetSourceLine() << "\n";
}

QDebug operator<<(QDebug debug, const std::exception& exception)
{
    return debug << "Exception occurred:\n" << exception.what();
}
