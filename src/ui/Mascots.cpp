#include "ui/Mascots.h"

#include "ui/Animation.h"
#include "ui/MascotView.h"
#include "ui/MotionPolicy.h"
#include "ui/Pictures.h"

#include <optional>

namespace tuppi {

namespace {

using namespace Qt::StringLiterals;

QSize pixelSize(QSize size, double ratio)
{
    return (QSizeF(size) * ratio).toSize();
}

} // namespace

struct Mascots::Pose
{
    QString name;
    std::optional<bool> animated;      ///< whether it has an animation that can be read, once that was asked
    std::unique_ptr<GifReader> opened; ///< from the asking until the movie takes them
    std::unique_ptr<Animation> movie;
    QHash<QPair<int, QSize>, QPixmap> frames; ///< scaled from the movie for smaller views
    QHash<QSize, QPixmap> stills;
    SightList views;
};

Mascots::Mascots(MotionPolicy &motion, const QString &folder, QObject *parent)
    : QObject(parent)
    , m_motion(motion)
    , m_folder(folder)
{
    connect(&motion, &MotionPolicy::reducedMotionChanged, this, [this](bool reduced) {
        if (reduced)
            stopAll();
        Q_EMIT redraw();
    });
}

Mascots::~Mascots() = default;

Mascots::Pose &Mascots::poseFor(const QString &name)
{
    std::shared_ptr<Pose> &pose = m_poses[name];
    if (!pose) {
        pose = std::make_shared<Pose>();
        pose->name = name;
        connect(&pose->views, &SightList::cameBack, this, &Mascots::redraw);
    }
    return *pose;
}

std::unique_ptr<GifReader> Mascots::framesOf(const Pose &pose) const
{
    return std::make_unique<GifReader>(m_folder + u"/tuppi-"_s + pose.name + u".gif"_s);
}

bool Mascots::animates(const QString &pose)
{
    if (m_motion.reducedMotion())
        return false;
    Pose &known = poseFor(pose);
    if (!known.animated) {
        known.opened = framesOf(known);
        // A file without a single good frame has no animation.
        known.animated = known.opened->isGood();
    }
    return *known.animated;
}

bool Mascots::isRunning(const QString &pose) const
{
    const std::shared_ptr<Pose> known = m_poses.value(pose);
    return known && known->movie && known->movie->isRunning();
}

QPixmap Mascots::still(const QString &name, QSize size, double devicePixelRatio)
{
    Pose &pose = poseFor(name);
    const QSize pixels = pixelSize(size, devicePixelRatio);
    QPixmap &picture = pose.stills[pixels];
    if (picture.isNull()) {
        // The smallest drawing that need not be enlarged.
        QImage drawn;
        for (const char16_t *scale : {u"", u"@2x", u"@3x"}) {
            const QImage image = ReadPng(m_folder + u"/tuppi-"_s + name + QString::fromUtf16(scale) + u".png"_s);
            if (!image.isNull())
                drawn = image;
            if (drawn.width() >= pixels.width())
                break;
        }
        if (!drawn.isNull())
            picture = QPixmap::fromImage(drawn.scaled(pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
    QPixmap sized = picture;
    sized.setDevicePixelRatio(devicePixelRatio);
    return sized;
}

void Mascots::openMovie(Pose &pose, QSize pixels, int frame)
{
    pose.movie = std::make_unique<Animation>(pose.opened ? std::move(pose.opened) : framesOf(pose), pixels, this);
    pose.frames.clear();
    pose.movie->goTo(frame);
    connect(pose.movie.get(), &Animation::frameChanged, this, [this, name = pose.name] { step(name); });
}

QPixmap Mascots::frame(const QString &name, QSize size, double devicePixelRatio)
{
    if (!animates(name))
        return still(name, size, devicePixelRatio);
    Pose &pose = poseFor(name);
    const QSize pixels = pixelSize(size, devicePixelRatio);
    if (!pose.movie) {
        openMovie(pose, pixels, 0);
    } else if (pixels.width() > pose.movie->size().width()) {
        const bool running = pose.movie->isRunning();
        openMovie(pose, pixels, pose.movie->frameNumber());
        if (running)
            pose.movie->start();
    }

    QPixmap picture = pose.movie->picture();
    if (picture.size() != pixels) {
        QPixmap &smaller = pose.frames[{pose.movie->frameNumber(), pixels}];
        if (smaller.isNull())
            smaller = picture.scaled(pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        picture = smaller;
    }
    picture.setDevicePixelRatio(devicePixelRatio);
    return picture;
}

void Mascots::painted(MascotView *view)
{
    if (!animates(view->pose()) || !isInSight(*view))
        return;
    Pose &pose = poseFor(view->pose());
    if (!pose.movie)
        return;
    pose.views.add(view);
    if (!pose.movie->isRunning())
        pose.movie->start();
}

void Mascots::step(const QString &name)
{
    Pose &pose = poseFor(name);
    bool seen = false;
    for (QWidget *widget : pose.views.look()) {
        auto *view = static_cast<MascotView *>(widget);
        if (view->isAnimated()) {
            seen = true;
            view->update();
        }
    }
    if (!seen) {
        pose.views.clear();
        pose.movie->pause();
    }
}

void Mascots::stopAll()
{
    for (const std::shared_ptr<Pose> &pose : std::as_const(m_poses)) {
        pose->views.clear();
        if (pose->movie)
            pose->movie->pause();
    }
}

} // namespace tuppi
