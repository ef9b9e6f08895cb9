#pragma once

#include "tessal/failure.h"

#include <QString>
#include <QStringList>

#include <exception>
#include <utility>

/// Implemented by exceptions of the program itself: their description in the user's language.
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

/// An exception of type E with an English description, and the same text in the user's language.
template <typename E>
class Translated : public E, public ITranslated
{
public:
    Translated(E raised, QString text) : E(std::move(raised)), m_sentence(std::move(text)) {}

    [[nodiscard]] const QString& sentence() const noexcept override { return m_sentence; }

private:
    QString m_sentence;
};

/// What happened, what the camera stored before, and what to do, in the user's language. Plain text, not
/// markup; what comes from a camera is made fit for display.
[[nodiscard]] QString describeFailure(const Tessal::Failure& failure);

/// What the user can be told about an exception and those nested in it, the outermost first; nothing about
/// those that carry neither a Failure nor a translation.
[[nodiscard]] QStringList sentencesOf(const std::exception& exception);

/// For support: the what() of the exception and of those nested in it, one per line, in English.
[[nodiscard]] QString technicalTextOf(const std::exception& exception);
