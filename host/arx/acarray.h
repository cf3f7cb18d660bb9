#pragma once
// The host's growable array, over std::vector.
#include <algorithm>
#include <vector>

template <typename T>
class AcArray {
  public:
    AcArray() = default;
    explicit AcArray(int physicalLength, int = 8) { data_.reserve(std::max(physicalLength, 0)); }

    int length() const { return static_cast<int>(data_.size()); }
    int logicalLength() const { return length(); }
    bool isEmpty() const { return data_.empty(); }
    bool isValid(int i) const { return i >= 0 && i < length(); }

    T& at(int i) { return data_.at(static_cast<std::size_t>(i)); }
    const T& at(int i) const { return data_.at(static_cast<std::size_t>(i)); }
    T& operator[](int i) { return data_[static_cast<std::size_t>(i)]; }
    const T& operator[](int i) const { return data_[static_cast<std::size_t>(i)]; }
    T& first() { return data_.front(); }
    T& last() { return data_.back(); }
    const T& first() const { return data_.front(); }
    const T& last() const { return data_.back(); }

    int append(const T& value) {
        data_.push_back(value);
        return length() - 1;
    }
    AcArray& append(const AcArray& other) {
        data_.insert(data_.end(), other.data_.begin(), other.data_.end());
        return *this;
    }
    AcArray& insertAt(int i, const T& value) {
        data_.insert(data_.begin() + std::clamp(i, 0, length()), value);
        return *this;
    }
    AcArray& removeAt(int i) {
        if (isValid(i)) data_.erase(data_.begin() + i);
        return *this;
    }
    bool remove(const T& value, int start = 0) {
        int i = -1;
        if (!find(value, i, start)) return false;
        removeAt(i);
        return true;
    }
    AcArray& removeFirst() { return removeAt(0); }
    AcArray& removeLast() { return removeAt(length() - 1); }
    AcArray& removeAll() {
        data_.clear();
        return *this;
    }
    AcArray& setAt(int i, const T& value) {
        data_.at(static_cast<std::size_t>(i)) = value;
        return *this;
    }
    AcArray& setLogicalLength(int n) {
        data_.resize(static_cast<std::size_t>(std::max(n, 0)));
        return *this;
    }
    AcArray& setPhysicalLength(int n) {
        data_.reserve(static_cast<std::size_t>(std::max(n, 0)));
        return *this;
    }
    bool contains(const T& value, int start = 0) const {
        int i = -1;
        return find(value, i, start);
    }
    bool find(const T& value, int& index, int start = 0) const {
        for (int i = std::max(start, 0); i < length(); ++i) {
            if (data_[static_cast<std::size_t>(i)] == value) {
                index = i;
                return true;
            }
        }
        return false;
    }
    int find(const T& value) const {
        int i = -1;
        find(value, i, 0);
        return i;
    }
    AcArray& reverse() {
        std::reverse(data_.begin(), data_.end());
        return *this;
    }
    const T* asArrayPtr() const { return data_.data(); }
    T* asArrayPtr() { return data_.data(); }

    auto begin() { return data_.begin(); }
    auto end() { return data_.end(); }
    auto begin() const { return data_.begin(); }
    auto end() const { return data_.end(); }
    bool operator==(const AcArray&) const = default;

  private:
    std::vector<T> data_;
};
