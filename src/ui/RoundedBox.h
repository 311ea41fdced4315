#pragma once

#include <QFrame>

namespace zentoro {

// A box on the secondary background in a rounded rectangle, coloured from the palette each
// time it is drawn, so that it follows the desktop between light and dark.
class RoundedBox : public QFrame {
public:
    explicit RoundedBox(int radius, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int radius_;
};

} // namespace zentoro
