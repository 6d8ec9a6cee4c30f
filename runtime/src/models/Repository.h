#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace engine {

// What the user typed: "owner/model-name", with ":file" behind it where the repository holds several models.
struct RepositoryName
{
    QString repo;
    QString file; // empty: the rule below chooses
};

// Takes an address copied from the browser as well. Throws Failure.
RepositoryName readRepositoryName(const QString &typed);

struct RepositoryFile
{
    QString path;
    qint64 size = 0; // bytes
    QString sha256;  // empty for a file that is not kept as a large one
};

// What Hugging Face tells of a repository.
struct Repository
{
    QString commit;      // the state that the list belongs to
    bool closed = false; // only for people who have signed in and agreed
    bool mlx = false;    // in the format of Apple's MLX
    std::vector<RepositoryFile> files;
};

// Reads the answer of /api/models/OWNER/NAME?blobs=true. Throws Failure when it is none.
Repository readRepository(const QByteArray &answer);

// The one file to download. With a file named, that one. Else there must be one model in whisper.cpp's form
// (ggml-NAME.bin); of several packings of it (ggml-NAME-q5_0.bin …) the unpacked one is taken, else the
// largest. Several models are not chosen between: the sentence lists them. Throws Failure.
RepositoryFile chooseFile(const Repository &repository, const RepositoryName &name);

} // namespace engine
