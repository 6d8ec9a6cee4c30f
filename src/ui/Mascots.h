#pragma once

#include "ui/Sight.h"

#include <QHash>
#include <QObject>
#include <QPixmap>
#include <QSize>

#include <memory>

namespace tuppi {

class GifReader;
class MascotView;
class MotionPolicy;

/// The pictures of Tuppi. Each pose is a still ("tuppi-done.png", with its @2x and @3x) and an animation
/// ("tuppi-done.gif"). A pose has one movie, shared by all views that show it: decoded once, at the largest
/// size asked for, and running only while one of the views is in sight and motion is wanted. Outlives its
/// views.
class Mascots : public QObject
{
    Q_OBJECT
public:
    explicit Mascots(MotionPolicy &motion, const QString &folder = u":/mascot"_qs, QObject *parent = nullptr);
    ~Mascots() override;

    /// True when motion is wanted and this pose has an animation that can be read.
    bool animates(const QString &pose);
    bool isRunning(const QString &pose) const;

    /// The still of a pose, sized in logical pixels, rendered for the ratio. Empty for an unknown pose.
    QPixmap still(const QString &pose, QSize size, double devicePixelRatio);
    /// The frame of the moment, or the still where there is no animation.
    QPixmap frame(const QString &pose, QSize size, double devicePixelRatio);

    /// An animated view says so whenever it has painted itself.
    void painted(MascotView *view);

Q_SIGNALS:
    /// Every animated view is to draw itself anew: motion is wanted, or no longer, or a window has come back.
    void redraw();

private:
    struct Pose;
    Pose &poseFor(const QString &name);
    std::unique_ptr<GifReader> framesOf(const Pose &pose) const;
    void openMovie(Pose &pose, QSize pixels, int frame);
    void step(const QString &name);
    void stopAll();

    MotionPolicy &m_motion;
    QString m_folder;
    QHash<QString, std::shared_ptr<Pose>> m_poses;
};

} // namespace tuppi
