// Protobuf: one message of repeated messages, a row each.  The texts are of the type bytes, which isn't
// checked for UTF-8; what is loaded is the message itself.

#include <fcntl.h>
#include <unistd.h>

#include "record_peer.h"
#include "record_rows.pb.h"
#include "support.h"

namespace bench {

namespace {

class Protobuf : public RecordPeer {
  public:
    void build(const Texts& texts) override {
        rows_ = std::make_unique<record_rows::Rows>();
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            record_rows::Row& added = *rows_->add_row();
            added.set_number(texts.number(row));
            added.set_price(texts.price(row));
        }
    }
    void save(const std::string& place) override {
        const int file = ::open(place.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        require(rows_->SerializeToFileDescriptor(file), "saving a message");
        ::close(file);
    }
    void load(const std::string& place) override {
        rows_ = std::make_unique<record_rows::Rows>();
        const int file = ::open(place.c_str(), O_RDONLY | O_CLOEXEC);
        require(rows_->ParseFromFileDescriptor(file), "loading a message");
        ::close(file);
    }
    bool holds(const Texts& texts) override {
        if (rows_->row_size() != texts.rows) return false;
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            const record_rows::Row& loaded = rows_->row(row);
            if (loaded.number() != texts.number(row) || loaded.price() != texts.price(row)) return false;
        }
        return true;
    }
    void clear() override { rows_.reset(); }

  private:
    std::unique_ptr<record_rows::Rows> rows_;
};

}  // namespace

std::unique_ptr<RecordPeer> makeProtobuf() {
    return std::make_unique<Protobuf>();
}

std::string protobufVersion() {
    constexpr unsigned number = GOOGLE_PROTOBUF_VERSION;  // three digits each
    return version(number / 1'000'000, number / 1000 % 1000, number % 1000);
}

}  // namespace bench
