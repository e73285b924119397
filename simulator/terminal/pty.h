// A raw pseudo-terminal, one end ours, the other end a serial port for somebody else.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace sim {

class Pty {
 public:
  // Opens a terminal; when that fails, Open() is false and Error() says why.
  Pty();
  ~Pty();
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  bool Open() const { return master_ >= 0; }
  const std::string& Error() const { return error_; }
  const std::string& Name() const { return name_; }

  int Descriptor() const { return master_; }  // readable when bytes have come
  int WatchDescriptor() const {
    return watch_;
  }  // readable when the other end was opened or closed; or -1

  // The bytes that have come.
  std::vector<std::uint8_t> Read();
  // Bytes that find no reader, or no room, are lost, as on a wire.
  void Write(std::span<const std::uint8_t> bytes);
  // Notes who has opened and closed the other end. When the last one has left, what was not read is
  // thrown away and the terminal is raw and open to all again, however that one left it.
  void NoteUsers();
  // Closes: to the other end the cable is pulled.
  void Close();

 private:
  bool OpenEnds();
  void MakeRaw() const;

  int master_ = -1;
  int slave_ = -1;  // held open, so that the terminal outlives its users
  int watch_ = -1;
  int users_ = 0;
  std::string name_;
  std::string error_;
};

}  // namespace sim
