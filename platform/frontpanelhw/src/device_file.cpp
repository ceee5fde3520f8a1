#include <frontpanelhw/device_file.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace frontpanelhw {

namespace {

std::string reason(int error) { return std::generic_category().message(error); }

int openOrThrow(std::string const& path, int flags, std::string const& what,
                std::string const& permissionHint) {
    int const descriptor = ::open(path.c_str(), flags | O_CLOEXEC);
    if (descriptor < 0) {
        int const error = errno;
        std::string hint;
        if (error == ENXIO) {
            hint = " (no process reads the FIFO; start the reader first)";
        } else if (error == EACCES) {
            hint = permissionHint;
        }
        DeviceFile::fail("cannot open " + what + " " + path, error, hint);
    }
    return descriptor;
}

}  // namespace

DeviceFileError::~DeviceFileError() = default;

DeviceFile::DeviceFile(std::string const& path, DeviceFileNaming naming)
    : path_(path), naming_(std::move(naming)) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        int const error = errno;
        fail("cannot open " + naming_.device + " " + path, error,
             error == ENOENT ? naming_.missingHint : std::string());
    }
    if (S_ISCHR(status.st_mode)) {
        kind_ = DeviceFileKind::Device;
        descriptor_ = openOrThrow(path, O_RDWR, naming_.device, naming_.permissionHint);
        description_ = naming_.device + " " + path;
    } else if (S_ISREG(status.st_mode)) {
        kind_ = DeviceFileKind::RegularFile;
        descriptor_ = openOrThrow(path, O_WRONLY | O_APPEND, "capture file", "");
        description_ = "capture file " + path;
    } else if (S_ISFIFO(status.st_mode)) {
        kind_ = DeviceFileKind::Fifo;
        // Non-blocking only while opening, so that a FIFO without a reader fails at once
        // instead of hanging; the writes themselves wait for the reader, so nothing is lost.
        descriptor_ = openOrThrow(path, O_WRONLY | O_NONBLOCK, "FIFO", "");
        int const flags = ::fcntl(descriptor_, F_GETFL);
        if (flags < 0 || ::fcntl(descriptor_, F_SETFL, flags & ~O_NONBLOCK) < 0) {
            int const error = errno;
            ::close(descriptor_);
            fail("cannot set up FIFO " + path, error, "");
        }
        description_ = "FIFO " + path;
    } else {
        throw DeviceFileError("cannot use " + path + ": neither an " + naming_.device +
                              " nor a regular file nor a FIFO");
    }
}

DeviceFile::~DeviceFile() { ::close(descriptor_); }

DeviceFileKind DeviceFile::kind() const { return kind_; }

int DeviceFile::descriptor() const { return descriptor_; }

std::string const& DeviceFile::path() const { return path_; }

std::string const& DeviceFile::description() const { return description_; }

void DeviceFile::setDescription(std::string description) { description_ = std::move(description); }

namespace {

/** Writes to a FIFO with SIGPIPE blocked for the calling thread: a reader that went away gives
 *  EPIPE, not the end of the process. A SIGPIPE raised by the write is taken off the thread
 *  again; one that was pending before is left alone. */
ssize_t writeWithoutSigpipe(int descriptor, void const* bytes, std::size_t size) {
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    sigset_t pending;
    sigpending(&pending);
    bool const wasPending = sigismember(&pending, SIGPIPE) == 1;
    ssize_t const written = ::write(descriptor, bytes, size);
    int const error = errno;
    if (written < 0 && error == EPIPE && !wasPending) {
        timespec const noWait{0, 0};
        while (sigtimedwait(&pipeSignal, nullptr, &noWait) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return written;
}

}  // namespace

void DeviceFile::write(void const* bytes, std::size_t size) {
    auto const* const first = static_cast<unsigned char const*>(bytes);
    std::size_t done = 0;
    while (done < size) {
        ssize_t const written = kind_ == DeviceFileKind::Fifo
                                    ? writeWithoutSigpipe(descriptor_, first + done, size - done)
                                    : ::write(descriptor_, first + done, size - done);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            int const error = errno;
            bool const noAnswer = error == EREMOTEIO || error == ENXIO || error == EIO;
            fail("writing to " + description_ + " failed", error,
                 noAnswer && kind_ == DeviceFileKind::Device ? naming_.transferHint
                 : error == EPIPE                            ? " (the reader went away)"
                                                             : "");
        }
        if (kind_ == DeviceFileKind::Device && static_cast<std::size_t>(written) != size) {
            throw DeviceFileError("writing to " + description_ + " failed: only " +
                                  std::to_string(written) + " of " + std::to_string(size) +
                                  " bytes were sent");
        }
        done += static_cast<std::size_t>(written);
    }
}

void DeviceFile::fail(std::string const& prefix, int error, std::string const& hint) {
    throw DeviceFileError(prefix + ": " + reason(error) + hint);
}

}  // namespace frontpanelhw
