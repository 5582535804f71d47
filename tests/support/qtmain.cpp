// main() of test programs that need Qt's application object: link qt_test_main and give
// add_unit_test NO_MAIN.

#include <QCoreApplication>

#include <gmock/gmock.h>

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
