#include "packagebuild.h"

#include "files.h"
#include "programs.h"
#include "workplace.h"

#include <QDirIterator>

namespace Benchmarks {

static QString build(const QString &spec, const QString &project, const QString &name)
{
    outputOf("rpmbuild",
             {"-bb",
              "--build-in-place",
              "--define",
              "_topdir " + project + "/.rpmbuild",
              "--define",
              "_rpmdir " + project + "/RPMS",
              spec},
             project);
    QDirIterator packages(
        project + "/RPMS", {name + "*.rpm"}, QDir::Files, QDirIterator::Subdirectories);
    return packages.next();
}

QString buildDemoPackage(const Workplace &workplace)
{
    const QString project = workplace.sdk().workspace() + "/hello-veyra";
    return build(project + "/rpm/hello-veyra.spec", project, "hello-veyra-1");
}

QString buildPackageOfSize(const QString &folder, int mebibytes)
{
    static const char SPEC[] = "Name: large\nVersion: 1\nRelease: 1\nSummary: Large\n"
                               "License: BSD\nBuildArch: noarch\n"
                               "%define _binary_payload w.ufdio\n"
                               "%description\nLarge.\n%install\nmkdir -p %{buildroot}\n"
                               "truncate -s ";
    writeFile(folder + "/large.spec",
              SPEC + QByteArray::number(mebibytes) + "M %{buildroot}/large\n%files\n/large\n");
    return build(folder + "/large.spec", folder, "large-1");
}

} // namespace Benchmarks
