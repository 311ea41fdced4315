#pragma once

#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace zentoro {

// One group of a settings form: a title over a rounded box of rows divided by hairlines, and
// a footnote under the box. Each row is a label on the left and its controls on the right, or
// one widget across the box. A hidden row takes its hairline with it.
class FormGroup : public QWidget {
    Q_OBJECT
public:
    static constexpr int labelWidth = 132;

    explicit FormGroup(const QString &title, QWidget *parent = nullptr);

    // A row of `label` and `field`; the label names `buddy` (the field itself unless given) for
    // assistive technology. Returns the row.
    QWidget *addRow(const QString &label, QWidget *field, QWidget *buddy = nullptr);
    // `row` across the box, at `index` among the rows, or last.
    void insertRow(QWidget *row, int index = -1);
    int indexOf(QWidget *row) const;

    void setFootnote(const QString &text);
    QLabel *footnote() const { return footnote_; }

private:
    class Box;
    Box *box_;
    QVBoxLayout *rows_;
    QLabel *footnote_;
};

} // namespace zentoro
