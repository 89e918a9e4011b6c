#pragma once

#include <QString>
#include <QtGlobal>
#include <functional>
#include <optional>

/// A newer version, to be shown to the user.
struct UpdateOffer {
    QString version;
    QString runningVersion;
    /// Plain text or HTML from the network: nothing that it names may be loaded.
    QString notes;
};

enum class UpdateChoice { install, later, skip };

/// How a check, or the update after it, has ended.
struct UpdateOutcome {
    enum class Kind {
        /// There is nothing newer.
        upToDate,
        /// This build, or this machine, cannot check.
        cannotCheck,
        /// The list of releases could not be had or read.
        checkFailed,
        /// The release could not be had whole.
        downloadFailed,
        /// The release is not signed by the makers, or not at all. Nothing of it is kept.
        badSignature,
        /// The release is good, but could not be written to disk.
        cannotKeep,
        /// The release is good, and the desktop has been asked to open it.
        handedOver,
        /// The release is good, but the desktop has nothing to open it with.
        notOpened,
    };

    Kind kind = Kind::upToDate;
    /// The running version for `upToDate`, else the offered one, where there is one.
    QString version = {};
    /// Why, in words for the user.
    QString reason = {};
    /// Where the release is kept, if it is.
    QString packagePath = {};

    bool operator==(const UpdateOutcome&) const = default;
};

/// Tells the user of updates and asks what to do. It shows one thing at a time: each call replaces
/// what was shown before, whose callback is then never called. Every callback comes from the main
/// loop, at most once, and never before the call returns.
class UpdateUserDriver {
public:
    virtual ~UpdateUserDriver() = default;

    /// A check that the user asked for is running.
    virtual void showChecking(std::function<void()> onCancel) = 0;
    /// Asks what to do; to put the question off is to choose `later`. `isExpected` tells whether
    /// the user waits for it; if not, it does not take the keyboard from what the user does.
    virtual void showOffer(const UpdateOffer& offer, bool isExpected,
                           std::function<void(UpdateChoice)> onChoice) = 0;
    virtual void showDownload(const QString& version, std::function<void()> onCancel) = 0;
    /// Bytes received so far, and of how many where that is known. Only while a download is shown.
    virtual void showProgress(qint64 received, std::optional<qint64> total) = 0;
    virtual void showOutcome(const UpdateOutcome& outcome) = 0;
    /// Puts what is shown in front of the user again.
    virtual void bringToFront() = 0;
    /// Shows nothing any more.
    virtual void dismiss() = 0;

    /// Beside offers and `upToDate` the user can switch the checks that run by themselves.
    virtual void setAutomaticChecks(bool isOn, std::function<void(bool)> onChange) = 0;
};
