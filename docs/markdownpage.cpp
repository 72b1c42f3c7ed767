// Makes a page for a browser of a page in Markdown: markdownpage PAGE.md PAGE.html

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTextDocument>

/// As links in the pages name the heading \a title: "What to do when …" is "what-to-do-when-".
static QString anchorOf(QString title)
{
    static const QRegularExpression left(QStringLiteral("<[^>]*>|&[a-z]+;|[^\\w\\s-]"),
                                         QRegularExpression::UseUnicodePropertiesOption);
    return title.remove(left).toLower().replace(QLatin1Char(' '), QLatin1Char('-'));
}

static QString withAnchors(QString html)
{
    static const QRegularExpression heading(QStringLiteral("<h([1-6])([^>]*)>(.*?)</h\\1>"));
    qsizetype at = 0;
    for (auto match = heading.match(html, at); match.hasMatch(); match = heading.match(html, at)) {
        const QString id = QStringLiteral(" id=\"%1\"").arg(anchorOf(match.captured(3)));
        html.insert(match.capturedStart(2), id);
        at = match.capturedEnd() + id.size();
    }
    return html;
}

/// Without links to other pages, which are not installed.
static QString withoutOtherPages(QString html)
{
    static const QRegularExpression link(QStringLiteral("<a href=\"[^\"]*\\.md[^\"]*\">(.*?)</a>"));
    return html.replace(link, QStringLiteral("\\1"));
}

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QFile source(application.arguments().value(1));
    QFile page(application.arguments().value(2));
    if (!source.open(QIODevice::ReadOnly) || !page.open(QIODevice::WriteOnly))
        return 1;

    QTextDocument document;
    document.setMarkdown(QString::fromUtf8(source.readAll()));
    const QByteArray html = withoutOtherPages(withAnchors(document.toHtml())).toUtf8();
    return page.write(html) == html.size() ? 0 : 1;
}
