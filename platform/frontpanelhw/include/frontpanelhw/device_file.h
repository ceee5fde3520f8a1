#pragma once

#include <frontpanelhw/export.h>

#include <cstddef>
#include <stdexcept>
#include <string>

namespace frontpanelhw {

/** A bus path could not be opened or written. The message names the path and the reason, with
 *  a hint at the usual cause where there is one. */
class FRONTPANELHW_EXPORT DeviceFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~DeviceFileError() override;
};

/** What a bus path turned out to be. */
enum class DeviceFileKind {
    Device,       ///< a character device node (/dev/i2c-1, /dev/spidev0.0)
    RegularFile,  ///< a regular file that captures the transfers (appended)
    Fifo          ///< a FIFO whose reader receives the transfers
};

/** The words a DeviceFile uses in its messages for one kind of bus. */
struct DeviceFileNaming {
    /** What the device node is called: "I2C device", "SPI device". */
    std::string device;
    /** Appended when the path does not exist, e.g. " (is the i2c-dev module loaded?)". */
    std::string missingHint;
    /** Appended when the device may not be opened, e.g. " (is the user in the i2c group?)". */
    std::string permissionHint;
    /** Appended when a transfer to the device fails with an I/O error (nobody answers). */
    std::string transferHint;
};

/** A device node of a bus, or a regular file or FIFO standing in for it to capture what would
 *  go on the bus: the one place that decides which of them a path is, opens it with the right
 *  flags and writes whole transfers to it. A regular file is appended to; a FIFO without a
 *  reader is refused at once rather than waited for, and later writes wait for the reader. A
 *  device node is opened for reading and writing; what the bus needs next (ioctls) is the
 *  caller's. The descriptor is closed with the object. One thread at a time. */
class FRONTPANELHW_EXPORT DeviceFile {
public:
    /** Opens `path`. @throws DeviceFileError naming the path and the reason when it is missing,
     *  may not be opened, is a FIFO without a reader, or is another kind of file. */
    DeviceFile(std::string const& path, DeviceFileNaming naming);
    ~DeviceFile();
    DeviceFile(DeviceFile const&) = delete;
    DeviceFile& operator=(DeviceFile const&) = delete;

    /** Which kind of file the path is. */
    DeviceFileKind kind() const;
    /** The open descriptor (for the caller's ioctls on a device node). */
    int descriptor() const;
    /** The path as given. */
    std::string const& path() const;
    /** How messages name this file: "I2C device /dev/i2c-1", "capture file out.bin", ... */
    std::string const& description() const;
    /** Replaces the description, e.g. to add the bus address once it is selected. */
    void setDescription(std::string description);

    /** Writes `size` bytes as one transfer: a device node must take them in one write(2) (the
     *  kernel makes it one bus transaction); a file or FIFO takes as many as it needs.
     *  @throws DeviceFileError naming the file and the reason when writing fails. */
    void write(void const* bytes, std::size_t size);

    /** Throws DeviceFileError "`prefix`: REASON`hint`" with REASON the text of the errno value
     *  `error`: for the caller's failed ioctls. */
    [[noreturn]] static void fail(std::string const& prefix, int error, std::string const& hint);

private:
    int descriptor_ = -1;
    DeviceFileKind kind_ = DeviceFileKind::Device;
    std::string path_;
    std::string description_;
    DeviceFileNaming naming_;
};

}  // namespace frontpanelhw
