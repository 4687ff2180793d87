#include <optional>
#include <vector>

#include "platform/com/type_info.h"
#include "tests/platform/com/live_objects.h"

namespace forgeyard {
namespace {

enum Shape : std::int32_t { kRound = 1, kSquare = 2 };

struct IThing : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("A5000001-0000-0000-0000-000000000000");

  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
  virtual HRESULT get_Size(std::int32_t* value) = 0;
  virtual HRESULT put_Size(std::int32_t value) = 0;
  virtual HRESULT get_Shape(Shape* value) = 0;
  virtual HRESULT put_Shape(Shape value) = 0;
  virtual HRESULT get_Partner(Ref<IThing>* out) = 0;
  virtual HRESULT put_Partner(IThing* value) = 0;
  virtual HRESULT get_Item(const Variant& index, Ref<IUnknown>* out) = 0;
  virtual HRESULT get_Slot(std::int32_t index, BString* value) = 0;
  virtual HRESULT put_Slot(std::int32_t index, const BString& value) = 0;
  virtual HRESULT put_Secret(double value) = 0;
  virtual HRESULT Blend(bool flag, std::uint32_t level, double ratio, double* out) = 0;
  virtual HRESULT Describe(const BString& text, IThing* with, const Variant& extra, BString* out) = 0;
  virtual HRESULT Touch() = 0;
  virtual HRESULT Fail(std::int32_t* out) = 0;
  virtual HRESULT Nothing(std::int32_t* out) = 0;
  virtual HRESULT Explode() = 0;
};

struct IBigThing : IThing {
  using Base = IThing;
  static constexpr Guid iid = guid("A5000002-0000-0000-0000-000000000000");

  virtual HRESULT get_Weight(double* value) = 0;
};

}  // namespace

FORGEYARD_TYPE_INFO(IThing, nullptr, property<&IThing::get_Name, &IThing::put_Name>(1, "Name", "name"),
                    property<&IThing::get_Size, &IThing::put_Size>(2, "Size", "size"),
                    property<&IThing::get_Shape, &IThing::put_Shape>(3, "Shape", "shape"),
                    property<&IThing::get_Partner, &IThing::put_Partner>(4, "Partner", "partner"),
                    readOnly<&IThing::get_Item>(0, "Item", "item", "index"),
                    property<&IThing::get_Slot, &IThing::put_Slot>(5, "Slot", "slot", "index"),
                    writeOnly<&IThing::put_Secret>(6, "Secret", "secret"),
                    method<&IThing::Blend>(7, "Blend", "flag,level,ratio,out", "blend"),
                    method<&IThing::Describe>(8, "Describe", "text,with,extra,out", "describe"),
                    method<&IThing::Touch>(9, "Touch", "", "touch"),
                    method<&IThing::Fail>(10, "Fail", "out", "fail"),
                    method<&IThing::Nothing>(11, "Nothing", "out", "nothing"),
                    method<&IThing::Explode>(12, "Explode", "", "explode"))
FORGEYARD_TYPE_INFO(IBigThing, &typeInfo<IThing>(), readOnly<&IBigThing::get_Weight>(13, "Weight", "weight"))

namespace {

class Thing final : public ComObject<Dual<IBigThing>> {
 public:
  HRESULT get_Name(BString* value) override { return give(value, name); }
  HRESULT put_Name(const BString& value) override { return give(&name, value); }
  HRESULT get_Size(std::int32_t* value) override { return give(value, size); }
  HRESULT put_Size(std::int32_t value) override { return give(&size, value); }
  HRESULT get_Shape(Shape* value) override { return give(value, shape); }
  HRESULT put_Shape(Shape value) override { return give(&shape, value); }
  HRESULT get_Partner(Ref<IThing>* out) override { return give(out, partner); }
  HRESULT put_Partner(IThing* value) override { return give(&partner, Ref<IThing>(value)); }
  HRESULT get_Item(const Variant& index, Ref<IUnknown>* out) override {
    itemAsked = index;
    return give(out, Ref<IUnknown>(static_cast<IThing*>(this)));
  }
  HRESULT get_Slot(std::int32_t index, BString* value) override {
    return give(value, BString::fromNarrow(std::to_string(index)) + u"=" + name);
  }
  HRESULT put_Slot(std::int32_t index, const BString& value) override {
    return give(&name, BString::fromNarrow(std::to_string(index)) + u":" + value);
  }
  HRESULT put_Secret(double value) override { return give(&secret, value); }
  HRESULT Blend(bool flag, std::uint32_t level, double ratio, double* out) override {
    return give(out, flag ? level * ratio : -1);
  }
  HRESULT Describe(const BString& text, IThing* with, const Variant& extra, BString* out) override {
    BString more;
    check(extra.toText(&more));
    return give(out, text + (with ? u" with" : u" alone") + more);
  }
  HRESULT Touch() override { return give(&touched, touched + 1); }
  HRESULT Fail(std::int32_t* out) override {
    *out = 7;
    return E_UNEXPECTED;
  }
  HRESULT Nothing(std::int32_t* out) override {
    *out = 7;
    return S_FALSE;
  }
  HRESULT Explode() override { throw std::bad_alloc(); }
  HRESULT get_Weight(double* value) override { return give(value, 2.5); }

  BString name;
  std::int32_t size = 0;
  Shape shape = kRound;
  Ref<IThing> partner;
  std::optional<Variant> itemAsked;
  double secret = 0;
  int touched = 0;

 private:
  template <class T, class V>
  static HRESULT give(T* to, V value) {
    *to = static_cast<T>(value);
    return S_OK;
  }
};

class Stranger final : public ComObject<IUnknown> {};

class Dispatch : public NoObjectLeft {
 protected:
  ~Dispatch() override { thing_ = nullptr; }

  static std::int32_t idOf(const BString& name) {
    std::int32_t id = 0;
    ignore(dispatchNames(typeInfo<IBigThing>(), {&name, 1}, &id));
    return id;
  }
  HRESULT call(const BString& name, InvokeKind kind, std::vector<Variant> arguments = {}) {
    error_.argument = 99;
    result_ = Variant(u"left over");
    return dispatch_->Invoke(idOf(name), kind, arguments, &result_, &error_);
  }
  HRESULT get(const BString& name, std::vector<Variant> arguments = {}) {
    return call(name, InvokeKind::PropertyGet, std::move(arguments));
  }
  HRESULT put(const BString& name, std::vector<Variant> arguments) {
    return call(name, InvokeKind::PropertyPut, std::move(arguments));
  }
  HRESULT run(const BString& name, std::vector<Variant> arguments = {}) {
    return call(name, InvokeKind::Method, std::move(arguments));
  }
  BString text() const {
    const BString* value = result_.get<BString>();
    return value ? *value : BString(u"(no text)");
  }

  Ref<Thing> thing_ = make<Thing>();
  IDispatch* dispatch_ = thing_.get();
  Variant result_;
  InvokeError error_;
};

TEST_F(Dispatch, FindsNamesInAnyCaseAlsoThoseOfTheBase) {
  const BString names[] = {u"weight", u"NAME", u"sIzE", u"Item"};
  std::int32_t ids[4] = {};
  EXPECT_EQ(dispatch_->GetIDsOfNames(names, ids), S_OK);
  EXPECT_EQ(std::vector(ids, ids + 4), (std::vector<std::int32_t>{13, 1, 2, 0}));
}

TEST_F(Dispatch, MarksEachUnknownNameAndStillFindsTheOthers) {
  // The Kelvin sign folds to "k" elsewhere; names of members are plain letters.
  const BString names[] = {u"Nam",
                           u"Name",
                           u"Names",
                           BString(),
                           u"Siz\u0435",
                           u"Weigh\u212A",
                           BString(std::u16string_view(u"Name\0", 5))};
  std::int32_t ids[7] = {};
  EXPECT_EQ(dispatch_->GetIDsOfNames(names, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(std::vector(ids, ids + 7), (std::vector<std::int32_t>{-1, 1, -1, -1, -1, -1, -1}));
}

TEST_F(Dispatch, DescribesTheInterfaceBehindThePointer) {
  std::uint32_t count = 0;
  const TypeInfo* type = nullptr;
  EXPECT_EQ(dispatch_->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(dispatch_->GetTypeInfo(&type), S_OK);
  ASSERT_EQ(type, &typeInfo<IBigThing>());
  EXPECT_STREQ(type->name, "IBigThing");
  EXPECT_EQ(type->iid, IBigThing::iid);
  EXPECT_EQ(type->base, &typeInfo<IThing>());
}

TEST_F(Dispatch, GetsAndPutsProperties) {
  EXPECT_EQ(put(u"Name", {u"bolt"}), S_OK);
  EXPECT_EQ(get(u"Name"), S_OK);
  EXPECT_EQ(text(), u"bolt");
  EXPECT_EQ(put(u"Size", {text()}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(put(u"Size", {u"12"}), S_OK);
  EXPECT_EQ(thing_->size, 12);
  EXPECT_EQ(put(u"Shape", {2}), S_OK);
  EXPECT_EQ(get(u"Shape"), S_OK);
  ASSERT_EQ(result_.type(), VARTYPE::VT_I4);
  EXPECT_EQ(*result_.get<std::int32_t>(), kSquare);
  EXPECT_EQ(put(u"Secret", {3}), S_OK);
  EXPECT_EQ(thing_->secret, 3.0);
  EXPECT_EQ(get(u"Weight"), S_OK);
  EXPECT_EQ(*result_.get<double>(), 2.5);
}

TEST_F(Dispatch, PassesObjectsInAndOut) {
  const auto partner = make<Thing>();
  EXPECT_EQ(put(u"Partner", {Variant(Ref<IDispatch>(partner))}), S_OK);
  EXPECT_EQ(get(u"Partner"), S_OK);
  ASSERT_EQ(result_.type(), VARTYPE::VT_DISPATCH);
  EXPECT_TRUE(sameObject(result_.get<Ref<IDispatch>>()->get(), static_cast<IThing*>(partner.get())));
  EXPECT_EQ(put(u"Partner", {Variant(Ref<IUnknown>(make<Stranger>()))}), DISP_E_TYPEMISMATCH);
  EXPECT_TRUE(thing_->partner);
  EXPECT_EQ(put(u"Partner", {Variant::null()}), S_OK);
  EXPECT_EQ(get(u"Partner"), S_OK);
  EXPECT_EQ(result_.type(), VARTYPE::VT_NULL);
}

TEST_F(Dispatch, GivesADispatchObjectWhereTheDeclarationIsWeaker) {
  EXPECT_EQ(get(u"Item", {u"key"}), S_OK);
  EXPECT_EQ(result_.type(), VARTYPE::VT_DISPATCH);
  EXPECT_EQ(*thing_->itemAsked->get<BString>(), u"key");
  result_ = Variant();
}

TEST_F(Dispatch, TakesIndexesOfPropertiesAheadOfTheValue) {
  EXPECT_EQ(put(u"Slot", {3, u"nut"}), S_OK);
  EXPECT_EQ(get(u"Slot", {u"4"}), S_OK);
  EXPECT_EQ(text(), u"4=3:nut");
}

TEST_F(Dispatch, GivesTheOutParameterAsResult) {
  EXPECT_EQ(run(u"Blend", {true, 4, 0.5}), S_OK);
  EXPECT_EQ(*result_.get<double>(), 2.0);
  EXPECT_EQ(run(u"Nothing"), S_FALSE);
  EXPECT_EQ(*result_.get<std::int32_t>(), 7);
}

TEST_F(Dispatch, EmptiesTheResultOfACallThatFailsOrHasNone) {
  EXPECT_EQ(run(u"Touch"), S_OK);
  EXPECT_EQ(result_.type(), VARTYPE::VT_EMPTY);
  EXPECT_EQ(run(u"Fail"), E_UNEXPECTED);
  EXPECT_EQ(result_.type(), VARTYPE::VT_EMPTY);
}

TEST_F(Dispatch, LetsNoExceptionOut) {
  EXPECT_EQ(run(u"Explode"), E_OUTOFMEMORY);
}

TEST_F(Dispatch, TakesItsArgumentFromWhereTheResultGoes) {
  Variant both(u"old");
  EXPECT_EQ(dispatch_->Invoke(idOf(u"Describe"), InvokeKind::Method, {&both, 1}, &both, nullptr), S_OK);
  EXPECT_EQ(*both.get<BString>(), u"old alone");
}

TEST_F(Dispatch, TakesNullForResultAndError) {
  const Variant wrong(u"word");
  EXPECT_EQ(dispatch_->Invoke(idOf(u"Fail"), InvokeKind::Method, {}, nullptr, nullptr), E_UNEXPECTED);
  EXPECT_EQ(dispatch_->Invoke(idOf(u"Size"), InvokeKind::PropertyGet, {}, nullptr, nullptr), S_OK);
  EXPECT_EQ(dispatch_->Invoke(idOf(u"Size"), InvokeKind::PropertyPut, {&wrong, 1}, nullptr, nullptr),
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(dispatch_->Invoke(idOf(u"Size"), InvokeKind::PropertyPut, {}, nullptr, nullptr),
            DISP_E_PARAMNOTFOUND);
}

TEST_F(Dispatch, LetsTrailingObjectsAndAnyValuesBeLeftOut) {
  EXPECT_EQ(run(u"Describe", {u"bolt"}), S_OK);
  EXPECT_EQ(text(), u"bolt alone");
  EXPECT_EQ(run(u"Describe", {u"bolt", Variant(Ref<IUnknown>(thing_.as<IUnknown>()))}), S_OK);
  EXPECT_EQ(text(), u"bolt with");
  EXPECT_EQ(run(u"Describe", {u"bolt", Variant(), 3}), S_OK);
  EXPECT_EQ(text(), u"bolt alone3");
  EXPECT_EQ(get(u"Item"), S_OK);
  EXPECT_EQ(thing_->itemAsked->type(), VARTYPE::VT_EMPTY);
  result_ = Variant();
}

TEST_F(Dispatch, NeverClearsAPropertyForAPutWithoutValue) {
  thing_->partner = make<Thing>();
  EXPECT_EQ(put(u"Partner", {}), DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(error_.argument, 0u);
  EXPECT_TRUE(thing_->partner);
}

struct WrongCall {
  const char* what;
  const char16_t* member;
  InvokeKind kind;
  std::vector<Variant> arguments;
  HRESULT status;
  std::uint32_t argument;  // 99: none is meant
};

TEST_F(Dispatch, TellsWhichArgumentIsWrong) {
  using enum InvokeKind;
  const Variant any(1);
  const std::vector<WrongCall> calls{
      {"one too many for a get", u"Size", PropertyGet, {any}, DISP_E_BADPARAMCOUNT, 99},
      {"one too many for a put", u"Size", PropertyPut, {any, any}, DISP_E_BADPARAMCOUNT, 99},
      {"one too many for a method", u"Touch", Method, {any}, DISP_E_BADPARAMCOUNT, 99},
      {"one too many, the first of a wrong type",
       u"Size",
       PropertyPut,
       {u"x", any},
       DISP_E_BADPARAMCOUNT,
       99},
      {"a value where only a result goes", u"Nothing", Method, {any}, DISP_E_BADPARAMCOUNT, 99},
      {"nothing for a needed first", u"Blend", Method, {}, DISP_E_PARAMNOTFOUND, 0},
      {"nothing for a needed third", u"Blend", Method, {true, 1}, DISP_E_PARAMNOTFOUND, 2},
      {"nothing for a needed text", u"Describe", Method, {}, DISP_E_PARAMNOTFOUND, 0},
      {"nothing for an index", u"Slot", PropertyGet, {}, DISP_E_PARAMNOTFOUND, 0},
      {"an index without value", u"Slot", PropertyPut, {any}, DISP_E_PARAMNOTFOUND, 1},
      {"no truth", u"Blend", Method, {u"maybe", 1, 1}, DISP_E_TYPEMISMATCH, 0},
      {"no number second", u"Blend", Method, {true, u"x", 1}, DISP_E_TYPEMISMATCH, 1},
      {"negative for unsigned", u"Blend", Method, {true, -1, 1}, DISP_E_OVERFLOW, 1},
      {"no number third", u"Blend", Method, {true, 1, Variant::null()}, DISP_E_TYPEMISMATCH, 2},
      {"two wrong ones", u"Blend", Method, {true, -1, u"x"}, DISP_E_OVERFLOW, 1},
      {"no object second", u"Describe", Method, {u"a", 1}, DISP_E_TYPEMISMATCH, 1},
      {"too large for an enumeration", u"Shape", PropertyPut, {4294967295u}, DISP_E_OVERFLOW, 0},
  };
  for (const WrongCall& wrong : calls) {
    EXPECT_EQ(call(wrong.member, wrong.kind, wrong.arguments), wrong.status) << wrong.what;
    EXPECT_EQ(error_.argument, wrong.argument) << wrong.what;
    EXPECT_EQ(result_.type(), VARTYPE::VT_EMPTY) << wrong.what;
  }
  EXPECT_EQ(thing_->touched, 0);
}

TEST_F(Dispatch, RefusesMembersAndFormsThatAreNotThere) {
  using enum InvokeKind;
  for (const std::int32_t id : {-1, 14, 1000, std::numeric_limits<std::int32_t>::min()}) {
    for (const InvokeKind kind : {Method, PropertyGet, PropertyPut}) {
      EXPECT_EQ(dispatch_->Invoke(id, kind, {}, nullptr, nullptr), DISP_E_MEMBERNOTFOUND) << id;
    }
  }
  EXPECT_EQ(put(u"Weight", {1.0}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(get(u"Secret"), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(run(u"Size"), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(get(u"Touch"), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(call(u"Name", static_cast<InvokeKind>(3), {u"x"}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(thing_->name, u"");
}

}  // namespace
}  // namespace forgeyard
