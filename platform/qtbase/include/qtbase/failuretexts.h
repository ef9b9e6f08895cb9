#pragma once

#include "tessal/failure.h"

#include <QString>
#include <QStringList>

#include <exception>
#include <utility>

/// What an exception says to the user if the program itself raised it: its description in the user's
/// language.
class ITranslated
{
public:
    ITranslated() = default;
    ITranslated(const ITranslated&) = default;
    ITranslated(ITranslated&&) = default;
    ITranslated& operator=(const ITranslated&) = default;
    ITranslated& operator=(ITranslated&&) = default;
    virtual ~ITranslated() = default;

    [[nodiscard]] virtual const QString& sentence() const noexcept = 0;
};

/// An exception of type E whose description stays English, with the same for the user beside it.
template <typename E>
class Translated : public E, public ITranslated
{
public:
    Translated(E raised, QString text) : E(std::move(raised)), m_sentence(std::move(text)) {}

    [[nodiscard]] const QString& sentence() const noexcept override { return m_sentence; }

private:
    QString m_sentence;
};

/// What happened, what the camera took before, and what to do, in plain sentences of the user's language.
/// Plain text: what comes from a camera is made fit to be shown, and is no markup.
[[nodiscard]] QString describeFailure(const Tessal::Failure& failure);

/// What can be told to the user of an exception and of those nested in it, the outermost first; nothing for
/// those that are neither a failure with values nor translated.
[[nodiscard]] QStringList sentencesOf(const std::exception& exception);

/// For support: the what() of the exception and of those nested in it, a line each, English.
[[nodiscard]] QString technicalTextOf(const std::exception& exception);
