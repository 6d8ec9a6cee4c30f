#pragma once

#include <QString>

namespace engine {

// Where everything stands under one home folder. All paths are absolute, without a slash at the end.
struct Paths
{
    QString home;
    QString base;  // what watchers of the engine watch
    QString store; // a folder of its own, so that the store's journal does not wake those watchers
    QString database;
    QString workerLock;
    QString filesLock; // held by whoever changes the files of finished transcripts
    QString changed;   // replaced after every change that a query would show
    QString reserve;   // room kept back for writing down that the disk is full
    QString models;    // the user's own speech models
    QString work;      // what recognisers need for a moment; the worker empties it
    QString defaultLibrary;

    static Paths under(const QString &home);
    static Paths ofThisUser();
};

// The folder of the running executable: the worker stands beside the engine.
QString executableFolder();

} // namespace engine
