#include "ui/text.h"

#include <QStringList>

namespace lumo::ui {
namespace {

/// "*.whs" as "*.[wW][hH][sS]": Linux tells cases apart, users do not.
QString AnyCase(const QString& pattern) {
    if (pattern == QLatin1String("*.*")) return QStringLiteral("*");
    QString wide;
    for (const QChar c : pattern) {
        if (c.isLetter())
            wide += QLatin1Char('[') + c.toLower() + c.toUpper() + QLatin1Char(']');
        else
            wide += c;
    }
    return wide;
}

}  // namespace

QString VisibleText(QString text) {
    const QString pair = QStringLiteral("\x01");
    return text.replace(QLatin1String("&&"), pair)
        .remove(QLatin1Char('&'))
        .replace(pair, QLatin1String("&"));
}

QString FileFilter(std::string_view pattern) {
    const QStringList parts = ToQt(pattern).split(QLatin1Char('|'), Qt::SkipEmptyParts);
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns;
        for (const QString& one : parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts))
            patterns += AnyCase(one.trimmed());
        QString name = parts[i];
        if (const qsizetype bracket = name.indexOf(QLatin1String(" (")); bracket > 0)
            name.truncate(bracket);
        filters += name + QLatin1String(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    return filters.join(QLatin1String(";;"));
}

}  // namespace lumo::ui
