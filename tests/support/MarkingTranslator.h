#pragma once

#include <QCoreApplication>
#include <QTranslator>

/// During its lifetime every text of one translation context appears «like this», so that a test sees which texts are
/// translatable, and in which context.
class MarkingTranslator : public QTranslator {
public:
    explicit MarkingTranslator(QString context)
        : m_context(std::move(context))
    {
        QCoreApplication::installTranslator(this);
    }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }
    Q_DISABLE_COPY_MOVE(MarkingTranslator)

    [[nodiscard]] QString translate(const char* context, const char* text, const char*, int) const override
    {
        return m_context == QLatin1String(context) ? marked(QString::fromUtf8(text)) : QString();
    }
    [[nodiscard]] bool isEmpty() const override { return false; }

    [[nodiscard]] static QString marked(const QString& text) { return QString::fromUtf8("«%1»").arg(text); }

private:
    QString m_context;
};
