#pragma once

#include <QAbstractButton>
#include <QList>
#include <QWidget>

namespace zentoro {

// A plain button whose text starts at the leading edge and wraps, in the full width, on a
// faint wash of the tint colour.
class SuggestionButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit SuggestionButton(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

// What an empty conversation shows: what the agent does, and four changes to start from.
class EmptyState : public QWidget {
    Q_OBJECT
public:
    static const QStringList &suggestions();

    explicit EmptyState(QWidget *parent = nullptr);

    const QList<SuggestionButton *> &buttons() const { return buttons_; }
    void setSuggestionsEnabled(bool enabled);

signals:
    void suggestionChosen(const QString &text);

private:
    QList<SuggestionButton *> buttons_;
};

} // namespace zentoro
